#include "platform/qt/menu_text.h"

#include "base/text.h"

#include <QHash>
#include <QTextBoundaryFinder>

#include <array>
#include <vector>

namespace tavrin {
namespace {

/// More than any title of the program needs; input is bounded before it is processed.
constexpr std::size_t longestTitleInBytes = 4096;

struct ModifierName {
    ModifierSet modifier;
    const char* symbol;
    const char* busName;
};

constexpr std::array modifierNames = {
    ModifierName{ModifierSet::control, "⌃", "Control"}, ModifierName{ModifierSet::option, "⌥", "Alt"},
    ModifierName{ModifierSet::shift, "⇧", "Shift"}, ModifierName{ModifierSet::command, "⌘", "Super"}};

/// Embeddings, overrides and isolates, whose effect may reach beyond the title.
bool turnsDirection(QChar c) {
    const auto code = c.unicode();
    return (code >= 0x202A && code <= 0x202E) || (code >= 0x2066 && code <= 0x2069);
}

QString elidedInTheMiddle(const QString& text, int longest) {
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    std::vector<qsizetype> ends;
    while (finder.toNextBoundary() != -1)
        ends.push_back(finder.position());
    const auto count = static_cast<int>(ends.size());
    if (count <= longest)
        return text;
    const int tail = (longest - 1) / 2;
    const int head = longest - 1 - tail;
    return text.left(ends[static_cast<std::size_t>(head - 1)]).trimmed() + QChar(0x2026) +
           text.mid(ends[static_cast<std::size_t>(count - tail - 1)]).trimmed();
}

} // namespace

QString menuTitle(const std::string& title) {
    QString line;
    for (const QChar c : QString::fromStdString(sanitizedUtf8(title, longestTitleInBytes))) {
        if (turnsDirection(c))
            continue;
        const bool breaksLine =
            c.category() == QChar::Separator_Line || c.category() == QChar::Separator_Paragraph;
        line += breaksLine || c.category() == QChar::Other_Control ? QChar(' ') : c;
    }
    return elidedInTheMiddle(line, longestMenuTitle);
}

QString actionText(const std::string& title) {
    return menuTitle(title).replace(QLatin1Char('&'), QLatin1String("&&"));
}

QString busMenuLabel(const std::string& title) {
    return menuTitle(title).replace(QLatin1Char('_'), QLatin1String("__"));
}

QString keyEquivalentText(const KeyEquivalent& equivalent) {
    QString text;
    for (const auto& [modifier, symbol, busName] : modifierNames)
        if (equivalent.modifiers.contains(modifier))
            text += QString::fromUtf8(symbol);
    return text + menuTitle(equivalent.key);
}

KeyNaming panelKeyNaming() {
    // Panels made with GTK read names.
    for (const QByteArray& name : qgetenv("XDG_CURRENT_DESKTOP").split(':'))
        for (const char* desktop : {"XFCE", "MATE", "X-Cinnamon", "Budgie", "LXDE", "Unity"})
            if (name.compare(desktop, Qt::CaseInsensitive) == 0)
                return KeyNaming::keysyms;
    return KeyNaming::characters;
}

QStringList busMenuShortcut(const KeyEquivalent& equivalent, KeyNaming naming) {
    static const QHash<QString, QString> keyNames = {{"←", "Left"}, {"→", "Right"}, {"↑", "Up"},
                                                     {"↓", "Down"}, {"+", "plus"},  {"-", "minus"}};
    static const QHash<QString, QString> keysyms = {
        {",", "comma"},      {".", "period"},      {"/", "slash"},          {";", "semicolon"},
        {"'", "apostrophe"}, {"[", "bracketleft"}, {"]", "bracketright"},   {"\\", "backslash"},
        {"=", "equal"},      {"Space", "space"},   {"Delete", "BackSpace"}, {"Enter", "KP_Enter"}};
    static const QHash<QString, QString> characters = {{"Delete", "Backspace"}, {"Escape", "Esc"}};
    QString key = menuTitle(equivalent.key);
    const bool hasNoName = key.startsWith(QLatin1String("Key")) && key.size() > 3;
    if (key.isEmpty() || hasNoName)
        return {};
    key = keyNames.value(key, key);
    key = (naming == KeyNaming::keysyms ? keysyms : characters).value(key, key);
    QStringList names;
    for (const auto& [modifier, symbol, busName] : modifierNames)
        if (equivalent.modifiers.contains(modifier))
            names += QString::fromLatin1(busName);
    return names + QStringList{key};
}

} // namespace tavrin

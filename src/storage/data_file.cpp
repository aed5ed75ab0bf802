#include "storage/data_file.h"

namespace tavrin {

std::expected<void, FileError> writeAtomically(const AppSupportPaths& paths,
                                               const std::filesystem::path& file, std::string_view bytes) {
    FileSystem& files = paths.fileManager;
    if (const auto created = files.createDirectories(paths.rootURL); !created)
        return created;
    const auto target = files.resolveLink(file);
    if (!target)
        return std::unexpected(target.error());
    // The name is fixed, so that what a crash leaves behind is reused instead of piling up.
    const auto temporary = target->parent_path() / ("." + target->filename().string() + ".tmp");
    if (const auto written = files.writeFlushed(temporary, bytes); !written) {
        static_cast<void>(files.remove(temporary));
        return written;
    }
    if (const auto renamed = files.rename(temporary, *target); !renamed) {
        static_cast<void>(files.remove(temporary));
        return renamed;
    }
    return files.flushDirectory(target->parent_path());
}

} // namespace tavrin

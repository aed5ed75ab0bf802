#pragma once

#include "records/layouts.h"
#include "records/profiles.h"

#include <algorithm>
#include <memory>
#include <ranges>

namespace tavrin {

/// All saved display setups and their layouts as the files held them when they were read. Copies share the
/// lists, which never change.
class SavedSetups {
public:
    using Profiles = std::vector<MonitorProfile>;
    using Layouts = std::vector<SavedLayout>;

    SavedSetups() : SavedSetups(Profiles{}, Layouts{}) {}
    SavedSetups(Profiles profiles, Layouts layouts)
        : SavedSetups(std::make_shared<const Profiles>(std::move(profiles)),
                      std::make_shared<const Layouts>(std::move(layouts))) {}
    SavedSetups(std::shared_ptr<const Profiles> profiles, std::shared_ptr<const Layouts> layouts)
        : profiles_(std::move(profiles)), layouts_(std::move(layouts)) {}

    /// In the order of creation.
    const Profiles& profiles() const { return *profiles_; }

    /// Those of all setups, in the order of saving.
    const Layouts& layouts() const { return *layouts_; }

    /// The layouts of one setup, in the order of saving.
    auto layoutsOf(const Uuid& profileID) const {
        return std::views::filter(
            *layouts_, [profileID](const SavedLayout& layout) { return layout.profileID == profileID; });
    }

    /// The first with that identifier; null for none.
    const MonitorProfile* profile(const Uuid& id) const { return find(*profiles_, id); }
    const SavedLayout* layout(const Uuid& id) const { return find(*layouts_, id); }

private:
    template <class Record>
    static const Record* find(const std::vector<Record>& records, const Uuid& id) {
        const auto found = std::ranges::find(records, id, &Record::id);
        return found == records.end() ? nullptr : &*found;
    }

    std::shared_ptr<const Profiles> profiles_; ///< never null
    std::shared_ptr<const Layouts> layouts_;   ///< never null
};

} // namespace tavrin

#include "tmutil/records/Bookkeeping.h"

#include "tmutil/records/Fields.h"
#include "tmutil/records/PropertyListFile.h"

namespace orvello::tmutil {

namespace {

constexpr auto fileName = "/bookkeeping.plist";

bool flagField(const plist::Dictionary& fields, std::string_view key) {
    return plist::integerValue(plist::find(fields, key)) != 0;
}

} // namespace

Bookkeeping loadBookkeeping(const std::string& folder) {
    Bookkeeping bookkeeping;
    const auto content = PropertyListFile(folder + fileName).read();
    if (!content)
        return bookkeeping;
    bookkeeping.lastDestination = textField(*content, "LastDestination");
    const auto* destinations = plist::find(*content, "Destinations");
    if (const auto* byId = destinations ? destinations->as<plist::Dictionary>() : nullptr)
        for (const auto& [id, value] : *byId)
            if (const auto* fields = value.as<plist::Dictionary>())
                bookkeeping.destinations[id] = {
                    .unfinishedSince = dateField(*fields, "UnfinishedSince"),
                    .needsRepair = flagField(*fields, "NeedsRepair"),
                    .lastPrune = dateField(*fields, "LastPrune"),
                    .forgotten = flagField(*fields, "Forgotten"),
                };
    return bookkeeping;
}

Failure saveBookkeeping(const std::string& folder, const Bookkeeping& bookkeeping) {
    plist::Dictionary destinations;
    for (const auto& [id, record] : bookkeeping.destinations) {
        plist::Dictionary fields{{"NeedsRepair", record.needsRepair}, {"Forgotten", record.forgotten}};
        if (record.unfinishedSince)
            fields.emplace("UnfinishedSince", *record.unfinishedSince);
        if (record.lastPrune)
            fields.emplace("LastPrune", *record.lastPrune);
        destinations.emplace(id, std::move(fields));
    }
    return PropertyListFile(folder + fileName)
        .replaceOrBeginAnew(
            {{"LastDestination", bookkeeping.lastDestination}, {"Destinations", std::move(destinations)}});
}

} // namespace orvello::tmutil

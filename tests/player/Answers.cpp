#include "tests/player/Answers.h"

#include <array>
#include <cstdio>
#include <ctime>

namespace orvello::player {

namespace {

/// The text of a dictionary of an XML property list; values are given as elements and indented as nested.
class DictionaryText {
  public:
    explicit DictionaryText(std::string indent)
        : indent_(std::move(indent)) {}

    void add(const char* key, const std::string& element) {
        entries_ += indent_ + "\t<key>" + key + "</key>\n" + indent_ + "\t" + element + "\n";
    }
    void addString(const char* key, const std::string& value) { add(key, "<string>" + value + "</string>"); }
    void addBoolean(const char* key, bool value) { add(key, value ? "<true/>" : "<false/>"); }
    void addInteger(const char* key, std::int64_t value) {
        add(key, "<integer>" + std::to_string(value) + "</integer>");
    }
    void addReal(const char* key, double value) {
        std::array<char, 40> text{};
        std::snprintf(text.data(), text.size(), "<real>%.17g</real>", value);
        add(key, text.data());
    }
    std::string element() const { return "<dict>\n" + entries_ + indent_ + "</dict>"; }

  private:
    std::string indent_;
    std::string entries_;
};

std::string document(const std::string& root) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n" +
           root + "\n</plist>\n";
}

constexpr auto destinationId = "7C1D5E92-0A4B-4F36-8E57-21B9D30F64AC";
constexpr auto mountPoint = "/Volumes/Harbour";

} // namespace

std::string timeStamp(std::chrono::system_clock::time_point time, const char* format) {
    const std::time_t seconds = std::chrono::system_clock::to_time_t(time);
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    std::array<char, 40> text{};
    return {text.data(), std::strftime(text.data(), text.size(), format, &utc)};
}

std::string statusAnswer(const Moment& moment) {
    DictionaryText status("");
    if (moment.isRunning()) {
        status.addString("BackupPhase", moment.phase);
    }
    status.addString("ClientID", "player");
    if (moment.isRunning()) {
        const std::string now = timeStamp(std::chrono::system_clock::now(), "%Y-%m-%dT%H:%M:%SZ");
        status.add("DateOfStateChange", "<date>" + now + "</date>");
        status.addString("DestinationID", destinationId);
    }
    if (moment.progress) {
        status.addString("DestinationMountPoint", mountPoint);
    }
    status.addReal("Percent", moment.fraction);
    if (moment.progress) {
        DictionaryText progress("\t");
        if (moment.progress->remaining) {
            progress.addInteger("TimeRemaining",
                                static_cast<std::int64_t>(moment.progress->remaining->count()));
        }
        progress.addInteger("bytes", moment.progress->bytes);
        progress.addInteger("files", moment.progress->files);
        progress.addInteger("totalBytes", moment.progress->totalBytes);
        progress.addInteger("totalFiles", moment.progress->totalFiles);
        status.add("Progress", progress.element());
    }
    status.addBoolean("Running", moment.isRunning());
    if (moment.isRunning()) {
        status.addBoolean("Stopping", moment.stopping);
    }
    return document(status.element());
}

std::string destinationAnswer() {
    DictionaryText destination("\t\t");
    destination.addString("Kind", "Local");
    destination.addString("ID", destinationId);
    destination.addString("Name", "Harbour");
    destination.addInteger("LastDestination", 1);
    destination.addString("MountPoint", mountPoint);
    DictionaryText root("");
    root.add("Destinations", "<array>\n\t\t" + destination.element() + "\n\t</array>");
    return document(root.element());
}

} // namespace orvello::player

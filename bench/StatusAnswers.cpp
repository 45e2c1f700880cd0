#include "bench/StatusAnswers.h"

namespace orvello::bench {

namespace {

std::string document(const std::string& entries) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n<dict>\n" +
           entries + "</dict>\n</plist>\n";
}

constexpr auto copying = R"(	<key>BackupPhase</key>
	<string>Copying</string>
	<key>ClientID</key>
	<string>org.orvello.bench</string>
	<key>DateOfStateChange</key>
	<date>2024-03-05T18:04:11Z</date>
	<key>DestinationID</key>
	<string>0E1B7A52-6C3D-4B8A-9F04-5D2C81A7E630</string>
	<key>DestinationMountPoint</key>
	<string>/Volumes/Lantern</string>
	<key>Percent</key>
	<real>0.41800000000000004</real>
	<key>Progress</key>
	<dict>
		<key>TimeRemaining</key>
		<integer>214</integer>
		<key>bytes</key>
		<integer>3141768504</integer>
		<key>files</key>
		<integer>7705</integer>
		<key>totalBytes</key>
		<integer>7516192768</integer>
		<key>totalFiles</key>
		<integer>18432</integer>
	</dict>
	<key>Running</key>
	<true/>
	<key>Stopping</key>
	<false/>
)";

} // namespace

std::string idleAnswer() {
    return document(R"(	<key>ClientID</key>
	<string>org.orvello.bench</string>
	<key>Percent</key>
	<real>-1</real>
	<key>Running</key>
	<false/>
)");
}

std::string copyingAnswer() {
    return document(copying);
}

std::string largeAnswer() {
    std::string entries = copying;
    for (int i = 0; i < 1000; ++i) {
        const auto number = std::to_string(10'000 + i);
        entries.append("\t<key>Source")
            .append(number)
            .append("</key>\n\t<dict>\n\t\t<key>Path</key>\n\t\t<string>/home/someone/");
        entries.append(number)
            .append("</string>\n\t\t<key>Size</key>\n\t\t<integer>")
            .append(number)
            .append("</integer>\n\t</dict>\n");
    }
    return document(entries);
}

} // namespace orvello::bench

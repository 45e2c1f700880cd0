#include "platform/Utf8.h"
#include "platform/plist/Base64.h"
#include "platform/plist/PropertyList.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <iterator>

namespace orvello::plist {

namespace {

constexpr std::string_view header = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                    "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n";

/// Whether XML 1.0 has the character at all, written as itself or as a reference.
bool isXmlCharacter(char32_t code) {
    return (code >= 0x20 && code != 0xFFFE && code != 0xFFFF) || code == '\t' || code == '\n' || code == '\r';
}

class Writer {
  public:
    explicit Writer(std::string& out)
        : out_(out) {}

    void write(const Value& value) {
        std::visit([this](const auto& content) { writeContent(content); }, value.variant());
    }

  private:
    void startLine() { out_.append(depth_, '\t'); }

    void writeLeaf(std::string_view element, std::string_view content) {
        startLine();
        fmt::format_to(std::back_inserter(out_), "<{0}>{1}</{0}>\n", element, content);
    }

    void writeText(std::string_view element, std::string_view text) {
        startLine();
        fmt::format_to(std::back_inserter(out_), "<{}>", element);
        writeEscaped(text);
        fmt::format_to(std::back_inserter(out_), "</{}>\n", element);
    }

    void writeEscaped(std::string_view text) {
        while (!text.empty()) {
            const auto character = firstCharacter(text);
            const std::size_t length = character ? character->length : 1;
            const char32_t code = character ? character->code : 0;
            if (code == '&')
                out_ += "&amp;";
            else if (code == '<')
                out_ += "&lt;";
            else if (code == '>')
                out_ += "&gt;";
            else if (code == '\r') // a literal one would be read as a line feed
                out_ += "&#13;";
            else if (isXmlCharacter(code))
                out_ += text.substr(0, length);
            text.remove_prefix(length);
        }
    }

    void writeContent(bool content) {
        startLine();
        out_ += content ? "<true/>\n" : "<false/>\n";
    }

    void writeContent(std::int64_t content) { writeLeaf("integer", fmt::format_int(content).c_str()); }

    void writeContent(double content) {
        if (std::isnan(content))
            return writeLeaf("real", "nan");
        if (std::isinf(content))
            return writeLeaf("real", content > 0 ? "+infinity" : "-infinity");
        std::array<char, 32> text{}; // the shortest form that reads as the same number has at most 24
        const auto end = std::to_chars(text.data(), text.data() + text.size(), content).ptr;
        writeLeaf("real", {text.data(), end});
    }

    void writeContent(const std::string& content) { writeText("string", content); }

    void writeContent(Date content) {
        using namespace std::chrono;
        const auto first = sys_days(year(0) / January / 1);
        const auto last = sys_days(year(9999) / December / 31) + hours(24) - seconds(1);
        const auto second = std::clamp<sys_seconds>(floor<seconds>(content), first, last);
        const auto midnight = floor<days>(second);
        const year_month_day day(midnight);
        const hh_mm_ss time(second - midnight);
        writeLeaf("date", fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", static_cast<int>(day.year()),
                                      static_cast<unsigned>(day.month()), static_cast<unsigned>(day.day()),
                                      time.hours().count(), time.minutes().count(), time.seconds().count()));
    }

    void writeContent(const Data& content) { writeLeaf("data", base64Text(content.bytes)); }

    void writeContent(const Array& content) {
        writeContainer("array", content, [this](const Value& element) { write(element); });
    }

    void writeContent(const Dictionary& content) {
        writeContainer("dict", content, [this](const auto& entry) {
            writeText("key", entry.first);
            write(entry.second);
        });
    }

    template <class Container, class WriteEntry>
    void writeContainer(std::string_view element, const Container& content, WriteEntry writeEntry) {
        startLine();
        if (content.empty()) {
            fmt::format_to(std::back_inserter(out_), "<{}/>\n", element);
            return;
        }
        fmt::format_to(std::back_inserter(out_), "<{}>\n", element);
        ++depth_;
        for (const auto& entry : content)
            writeEntry(entry);
        --depth_;
        startLine();
        fmt::format_to(std::back_inserter(out_), "</{}>\n", element);
    }

    std::string& out_;
    std::size_t depth_ = 0;
};

} // namespace

std::string serialize(const Value& value) {
    std::string out(header);
    out += "<plist version=\"1.0\">\n";
    Writer(out).write(value);
    out += "</plist>\n";
    return out;
}

} // namespace orvello::plist

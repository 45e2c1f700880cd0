#include "platform/plist/Base64.h"
#include "platform/plist/PropertyList.h"
#include "platform/plist/Scalars.h"

#include <expat.h>

#include <algorithm>
#include <array>
#include <climits>
#include <memory>
#include <utility>

namespace orvello::plist {

namespace {

enum class Element { Plist, Dictionary, Array, Key, String, Integer, Real, Date, Data, True, False };

std::optional<Element> elementNamed(std::string_view name) {
    using Entry = std::pair<std::string_view, Element>;
    static constexpr std::array<Entry, 11> names{{{"plist", Element::Plist},
                                                  {"dict", Element::Dictionary},
                                                  {"array", Element::Array},
                                                  {"key", Element::Key},
                                                  {"string", Element::String},
                                                  {"integer", Element::Integer},
                                                  {"real", Element::Real},
                                                  {"date", Element::Date},
                                                  {"data", Element::Data},
                                                  {"true", Element::True},
                                                  {"false", Element::False}}};
    const auto* found = std::ranges::find(names, name, &Entry::first);
    return found == names.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Value> scalarFromText(Element element, std::string&& text) {
    switch (element) {
    case Element::String:
        return std::move(text);
    case Element::Integer:
        return integerFromText(text);
    case Element::Real:
        return realFromText(text);
    case Element::Date:
        return dateFromText(text);
    case Element::Data:
        if (auto bytes = base64Bytes(text))
            return Data{std::move(*bytes)};
        return std::nullopt;
    case Element::True:
    case Element::False:
        return text.empty() ? std::optional<Value>(element == Element::True) : std::nullopt;
    default:
        return std::nullopt;
    }
}

bool isWhiteSpace(std::string_view text) {
    return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

/// Builds the value from the parser's events, and stops the parser at the first one that has no place in a
/// property list.
class Reader {
  public:
    explicit Reader(XML_Parser parser)
        : parser_(parser) {
        XML_SetUserData(parser, this);
        XML_SetXmlDeclHandler(parser, onXmlDeclaration);
        XML_SetStartDoctypeDeclHandler(parser, onDoctype);
        XML_SetSkippedEntityHandler(parser, onSkippedEntity);
        XML_SetElementHandler(parser, onStart, onEnd);
        XML_SetCharacterDataHandler(parser, onText);
    }

    std::optional<Value> takeRoot() { return std::move(root_); }

  private:
    /// An element that is open.
    struct Frame {
        Element element;
        Array array;
        Dictionary dictionary;
        std::optional<std::string> key;
    };

    static Reader& self(void* userData) { return *static_cast<Reader*>(userData); }

    static void XMLCALL onXmlDeclaration(void* userData, const XML_Char* version, const XML_Char* encoding,
                                         int) {
        const std::string_view name = encoding != nullptr ? encoding : "UTF-8";
        constexpr std::string_view utf8 = "utf-8";
        const auto same = [](char left, char right) { return (left | 0x20) == (right | 0x20); };
        // Without a version this is the declaration of an external entity; those are not read.
        if (version == nullptr || !std::ranges::equal(name, utf8, same))
            self(userData).refuse();
    }

    static void XMLCALL onDoctype(void* userData, const XML_Char*, const XML_Char*, const XML_Char*,
                                  int hasInternalSubset) {
        // Declarations in the document itself are of no use to a property list, only to attacks on its
        // readers.
        if (hasInternalSubset != 0)
            self(userData).refuse();
    }

    static void XMLCALL onSkippedEntity(void* userData, const XML_Char*, int) { self(userData).refuse(); }

    static void XMLCALL onStart(void* userData, const XML_Char* name, const XML_Char**) {
        auto& reader = self(userData);
        const auto element = elementNamed(name);
        if (!element || !reader.mayStart(*element))
            return reader.refuse();
        reader.open_.push_back({*element, {}, {}, {}});
        reader.text_.clear();
    }

    static void XMLCALL onEnd(void* userData, const XML_Char*) { self(userData).end(); }

    static void XMLCALL onText(void* userData, const XML_Char* text, int length) {
        auto& reader = self(userData);
        const std::string_view part(text, static_cast<std::size_t>(length));
        const Element element = reader.open_.back().element;
        if (element != Element::Plist && element != Element::Dictionary && element != Element::Array)
            reader.text_ += part;
        else if (!isWhiteSpace(part))
            reader.refuse();
    }

    void refuse() {
        refused_ = true;
        root_.reset();
        XML_StopParser(parser_, XML_FALSE);
    }

    bool mayStart(Element element) const {
        if (open_.empty())
            return element == Element::Plist;
        if (element == Element::Plist || open_.size() >= maximumDepth)
            return false;
        const Frame& parent = open_.back();
        switch (parent.element) {
        case Element::Plist:
            return element != Element::Key && !root_;
        case Element::Array:
            return element != Element::Key;
        case Element::Dictionary:
            return (element == Element::Key) == !parent.key;
        default:
            return false;
        }
    }

    void end() {
        // The parser may still tell of the end of an empty element whose start stopped it.
        if (refused_)
            return;
        Frame frame = std::move(open_.back());
        open_.pop_back();
        switch (frame.element) {
        case Element::Plist:
            return root_ ? void() : refuse();
        case Element::Key:
            open_.back().key = std::exchange(text_, {});
            return;
        case Element::Dictionary:
            return frame.key ? refuse() : add(std::move(frame.dictionary));
        case Element::Array:
            return add(std::move(frame.array));
        default:
            if (auto value = scalarFromText(frame.element, std::exchange(text_, {})))
                add(std::move(*value));
            else
                refuse();
        }
    }

    void add(Value value) {
        Frame& parent = open_.back();
        if (parent.element == Element::Plist)
            root_ = std::move(value);
        else if (parent.element == Element::Array)
            parent.array.push_back(std::move(value));
        else
            parent.dictionary.insert_or_assign(*std::exchange(parent.key, std::nullopt), std::move(value));
    }

    XML_Parser parser_;
    std::vector<Frame> open_;
    std::string text_;
    std::optional<Value> root_;
    bool refused_ = false;
};

} // namespace

std::optional<Value> parse(std::string_view bytes) {
    // The parser would recognise UTF-16 by itself; such a text always has a NUL in it, and UTF-8 XML never
    // has.
    if (bytes.size() > INT_MAX || bytes.find('\0') != std::string_view::npos)
        return std::nullopt;
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(XML_ParserCreate("UTF-8"),
                                                                              &XML_ParserFree);
    Reader reader(parser.get());
    if (XML_Parse(parser.get(), bytes.data(), static_cast<int>(bytes.size()), XML_TRUE) != XML_STATUS_OK)
        return std::nullopt;
    return reader.takeRoot();
}

} // namespace orvello::plist

#include "files/XmpPacket.h"

#include "files/Md5.h"

#include <algorithm>
#include <map>

using Bytes = std::vector<uint8_t>;

// What becomes of a property.
struct XmpRule
{
    const char* space;
    const char* name; // "" = all of the namespace; with a star at its end all that begin so
    std::string value;
    bool drop = false;
};

static const char kTiff[] = "http://ns.adobe.com/tiff/1.0/";
static const char kExif[] = "http://ns.adobe.com/exif/1.0/";
static const char kExifEx[] = "http://cipa.jp/exif/1.0/";
static const char kBasic[] = "http://ns.adobe.com/xap/1.0/";
static const char kNote[] = "http://ns.adobe.com/xmp/note/";
static const char kAux[] = "http://ns.adobe.com/exif/1.0/aux/";
static const char kEditor[] = "http://ns.adobe.com/photoshop/1.0/";
static const char kCore[] = "http://iptc.org/std/Iptc4xmpCore/1.0/xmlns/";
static const char kMore[] = "http://iptc.org/std/Iptc4xmpExt/2008-02-29/";
static const char kCamera[] = "http://ns.google.com/photos/1.0/camera/";

// Signs that the file holds more than one picture, which its results do not.
static const XmpRule kGaps[] = {
    {"http://ns.adobe.com/hdr-gain-map/1.0/", "", "", true},
    {"http://ns.apple.com/HDRGainMap/1.0/", "", "", true},
    {"http://ns.google.com/photos/1.0/container/", "", "", true},
    {"http://ns.google.com/photos/1.0/container/item/", "", "", true},
    {"http://ns.google.com/photos/1.0/depthmap/", "", "", true},
    {"http://ns.google.com/photos/1.0/image/", "", "", true},
    {"http://ns.google.com/photos/1.0/audio/", "", "", true},
    {"http://ns.google.com/photos/dd/1.0/device/", "", "", true},
    {kCamera, "MicroVideo*", "", true},
    {kCamera, "MotionPhoto*", "", true},
    {kBasic, "Thumbnails", "", true},
    {kNote, "HasExtendedXMP", "", true},
};

static const XmpRule kPrivate[] = {
    {kExif, "GPS*", "", true},
    {kExifEx, "BodySerialNumber", "", true},
    {kExifEx, "LensSerialNumber", "", true},
    {kExifEx, "CameraOwnerName", "", true},
    {kExif, "ImageUniqueID", "", true},
    {kAux, "SerialNumber", "", true},
    {kAux, "LensSerialNumber", "", true},
    {kAux, "OwnerName", "", true},
    {kTiff, "Artist", "", true},
    {"http://purl.org/dc/elements/1.1/", "creator", "", true},
    {kEditor, "City", "", true},
    {kEditor, "State", "", true},
    {kEditor, "Country", "", true},
    {kEditor, "AuthorsPosition", "", true},
    {kEditor, "CaptionWriter", "", true},
    {kCore, "Location", "", true},
    {kCore, "CountryCode", "", true},
    {kCore, "CreatorContactInfo", "", true},
    {kMore, "Location*", "", true},
    {kMore, "PersonInImage*", "", true},
    {"http://www.metadataworkinggroup.com/schemas/regions/", "", "", true},
    {"http://ns.microsoft.com/photo/1.2/", "", "", true}, // regions as well
};

// A packet that is taken apart, with the rules for its properties.
struct XmpEdit
{
    std::string text;
    std::vector<XmpRule> rules;
    std::map<std::string, std::string> spaces; // by prefix
};

// Prefixes are bound by attributes: xmlns:PREFIX="SPACE". A packet that binds one prefix twice is
// possible, but nobody writes it.
static std::map<std::string, std::string> SpacesIn(const std::string& text)
{
    std::map<std::string, std::string> spaces;
    const std::string kBinding = "xmlns:";
    for (size_t at = text.find(kBinding); at != text.npos;)
    {
        const size_t name = at + kBinding.size(), equal = text.find('=', name);
        const size_t open = equal == text.npos ? equal : text.find_first_of("\"'", equal);
        const size_t close = open == text.npos ? open : text.find(text[open], open + 1);
        if (close == text.npos)
            break;
        std::string prefix = text.substr(name, equal - name);
        prefix.erase(std::min(prefix.find_first_of(" \t\r\n"), prefix.size()));
        spaces[prefix] = text.substr(open + 1, close - open - 1);
        at = text.find(kBinding, close);
    }
    return spaces;
}

static bool NameFits(const std::string& name, const std::string& wanted)
{
    if (wanted.empty())
        return true;
    if (wanted.back() == '*')
        return name.compare(0, wanted.size() - 1, wanted, 0, wanted.size() - 1) == 0;
    return name == wanted;
}

static const XmpRule* RuleFor(const XmpEdit& edit, const std::string& qualified)
{
    const size_t colon = qualified.find(':');
    if (colon == qualified.npos)
        return nullptr;
    const auto space = edit.spaces.find(qualified.substr(0, colon));
    if (space == edit.spaces.end())
        return nullptr;
    for (const XmpRule& rule : edit.rules)
        if (space->second == rule.space && NameFits(qualified.substr(colon + 1), rule.name))
            return &rule;
    return nullptr;
}

static std::string NameAt(const std::string& text, size_t at)
{
    return text.substr(at, text.find_first_of(" \t\r\n/>=", at) - at);
}

// The place of the bracket that closes the tag at `at`; brackets in quotes do not count.
static size_t TagEnd(const std::string& text, size_t at)
{
    for (; at < text.size() && text[at] != '>'; ++at)
        if (text[at] == '"' || text[at] == '\'')
        {
            at = text.find(text[at], at + 1);
            if (at == text.npos)
                return at;
        }
    return at < text.size() ? at : text.npos;
}

// Behind the element whose tag begins at `at`, those of the same name inside of it counted.
static size_t BehindElement(const std::string& text, size_t at, const std::string& name)
{
    int depth = 0;
    while (at != text.npos)
    {
        const size_t end = TagEnd(text, at);
        if (end == text.npos)
            break;
        const bool closes = text[at + 1] == '/';
        if (NameAt(text, at + (closes ? 2 : 1)) == name && text[end - 1] != '/')
            depth += closes ? -1 : 1;
        if (depth == 0)
            return end + 1;
        at = text.find('<', end);
    }
    return text.size();
}

static std::string EditedTag(const XmpEdit& edit, const std::string& tag)
{
    std::string out;
    size_t at = 0;
    for (;;)
    {
        const size_t equal = tag.find('=', at);
        const size_t open = equal == tag.npos ? equal : tag.find_first_of("\"'", equal);
        const size_t close = open == tag.npos ? open : tag.find(tag[open], open + 1);
        if (close == tag.npos)
            return out + tag.substr(at);
        const std::string head = tag.substr(at, equal - at);
        const size_t last = head.find_last_not_of(" \t\r\n");
        const size_t blank = head.find_last_of(" \t\r\n", last);
        const bool named = last != head.npos && blank != head.npos;
        const XmpRule* rule = named ? RuleFor(edit, head.substr(blank + 1, last - blank)) : nullptr;
        if (!rule)
            out += tag.substr(at, close + 1 - at);
        else if (rule->drop)
            out += head.substr(0, blank);
        else
            out += tag.substr(at, open + 1 - at) + rule->value + tag[close];
        at = close + 1;
    }
}

// What is no element: behind it, or 0.
static size_t BehindRemark(const std::string& text, size_t at)
{
    for (const auto& [start, end] :
         {std::pair<std::string, std::string>("<!--", "-->"), {"<?", "?>"}, {"<![CDATA[", "]]>"}})
        if (text.compare(at, start.size(), start) == 0)
        {
            const size_t found = text.find(end, at);
            return found == text.npos ? text.size() : found + end.size();
        }
    return 0;
}

static std::string Edited(const XmpEdit& edit)
{
    const std::string& text = edit.text;
    std::string out;
    size_t at = 0;
    for (;;)
    {
        const size_t tag = std::min(text.find('<', at), text.size());
        out += text.substr(at, tag - at);
        at = BehindRemark(text, tag);
        const size_t end = at ? 0 : TagEnd(text, tag);
        if (at || end == text.npos) // the latter when the text ends, too
        {
            out += text.substr(tag, at ? at - tag : text.npos);
            if (!at)
                return out;
            continue;
        }
        at = end + 1;
        const std::string name = NameAt(text, tag + 1);
        const XmpRule* rule = RuleFor(edit, name);
        if (rule && rule->drop)
        {
            at = BehindElement(text, tag, name);
            continue;
        }
        out += EditedTag(edit, text.substr(tag, at - tag));
        const size_t closing = text.find('<', at);
        if (rule && text[end - 1] != '/' && closing != text.npos &&
            text.compare(closing, 2, "</") == 0)
        {
            out += rule->value;
            at = closing;
        }
    }
}

static std::string TextOf(const Bytes& packet)
{
    return std::string(packet.begin(), packet.end());
}

static std::string EditedBy(const std::string& text, const std::vector<XmpRule>& rules)
{
    return Edited({text, rules, SpacesIn(text)});
}

Bytes XmpOfResult(const Bytes& packet, const ResultFacts& facts)
{
    if (packet.empty() || facts.choice == MetadataChoice::None)
        return {};
    std::string now = facts.dateTime + facts.zone; // as XMP writes it
    if (now.size() > 10)
    {
        now[4] = now[7] = '-';
        now[10] = 'T';
    }
    const std::string width = std::to_string(facts.width), height = std::to_string(facts.height);
    std::vector<XmpRule> rules = {
        {kTiff, "Orientation", "1"},         {kTiff, "ImageWidth", width},
        {kTiff, "ImageLength", height},      {kExif, "PixelXDimension", width},
        {kExif, "PixelYDimension", height},  {kTiff, "DateTime", now},
        {kTiff, "Software", facts.software}, {kBasic, "ModifyDate", now},
        {kBasic, "MetadataDate", now},
    };
    rules.insert(rules.end(), std::begin(kGaps), std::end(kGaps));
    if (facts.choice == MetadataChoice::Private)
        rules.insert(rules.end(), std::begin(kPrivate), std::end(kPrivate));
    const std::string text = EditedBy(TextOf(packet), rules);
    return Bytes(text.begin(), text.end());
}

Bytes WithXmpExtension(const Bytes& packet, const Bytes& extension, const std::string& name)
{
    std::string text = TextOf(packet);
    const std::string more = TextOf(extension), kOpen = "<rdf:RDF", kClose = "</rdf:RDF>";
    const size_t open = more.find(kOpen), start = open == more.npos ? open : TagEnd(more, open);
    const size_t end = more.rfind(kClose), place = text.rfind(kClose), root = text.find(kOpen);
    if (text.find(name) == text.npos || start == more.npos || end == more.npos || end < start ||
        place == text.npos || root == text.npos)
        return packet;
    text.insert(place, more.substr(start + 1, end - start - 1));
    // What the extension binds around its properties has to be bound around them here.
    for (const auto& [prefix, space] : SpacesIn(more.substr(0, start)))
        if (text.find("xmlns:" + prefix + "=") == text.npos)
            text.insert(
                root + kOpen.size(),
                std::string(" xmlns:").append(prefix).append("=\"").append(space).append("\""));
    text = EditedBy(text, {{kNote, "HasExtendedXMP", "", true}});
    return Bytes(text.begin(), text.end());
}

Bytes XmpAskingFor(const Bytes& extension, std::string* name)
{
    *name = Md5Hex(extension);
    const std::string text = "<?xpacket begin=\"\xEF\xBB\xBF\" id=\"W5M0MpCehiHzreSzNTczkc9d\"?>"
                             "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\">"
                             "<rdf:RDF xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\">"
                             "<rdf:Description rdf:about=\"\" xmlns:xmpNote=\"" +
                             std::string(kNote) + "\" xmpNote:HasExtendedXMP=\"" + *name +
                             "\"/></rdf:RDF></x:xmpmeta><?xpacket end=\"w\"?>";
    return Bytes(text.begin(), text.end());
}

int XmpOrientation(const Bytes& packet)
{
    const std::string text = TextOf(packet);
    for (const auto& [prefix, space] : SpacesIn(text))
    {
        const std::string name = prefix + ":Orientation";
        const size_t at = space == kTiff ? text.find(name) : text.npos;
        const size_t digit =
            at == text.npos ? at : text.find_first_not_of(" =\"'>", at + name.size());
        if (digit != text.npos && text[digit] >= '1' && text[digit] <= '8')
            return text[digit] - '0';
    }
    return 1;
}

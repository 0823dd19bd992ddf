// The parts of an .xlsx file as a spreadsheet program reads them: what a cell holds and how it
// looks.
#pragma once

#include <map>
#include <orcus/zip_archive.hpp>
#include <orcus/zip_archive_stream.hpp>
#include <regex>
#include <string>
#include <vector>

namespace owb::test {

class XlsxParts {
  public:
    explicit XlsxParts(const std::string& path) {
        orcus::zip_archive_stream_fd stream(path.c_str());
        orcus::zip_archive archive(&stream);
        archive.load();
        sheet_ = read(archive, "xl/worksheets/sheet1.xml");
        styles_ = read(archive, "xl/styles.xml");
        for (const std::string& text :
             all(read(archive, "xl/sharedStrings.xml"), "<si><t[^>]*>([^<]*)</t></si>"))
            strings_.push_back(text);
    }

    // "number 31 0.00", "text Asha @", "empty @ back FFF0F0F0 fore FF0000FF"; "none" where there is
    // no cell.
    std::string cell(const std::string& name) const {
        std::smatch found;
        const std::regex pattern("<c r=\"" + name +
                                 "\" s=\"(\\d+)\"(?: t=\"(\\w)\")?(?:/>|><v>([^<]*)</v>)");
        if (!std::regex_search(sheet_, found, pattern)) return "none";
        const std::string value = found[3];
        const std::string told = value.empty()     ? "empty"
                                 : found[2] == "s" ? "text " + strings_.at(std::stoul(value))
                                                   : "number " + value;
        return told + " " + look(std::stoul(found[1]));
    }

    // "1 column 4 rows"
    std::string frozen() const {
        const auto split = [&](const char* which) {
            const auto found = all(sheet_, std::string("<pane[^>]* ") + which + "=\"(\\d+)\"");
            return found.empty() ? std::string("0") : found[0];
        };
        const std::string columns = split("xSplit"), rows = split("ySplit");
        return columns + (columns == "1" ? " column " : " columns ") + rows +
               (rows == "1" ? " row" : " rows");
    }

  private:
    // The library's call has changed between its versions.
    template <typename Archive>
    static std::string read(const Archive& archive, const char* part) {
        std::vector<unsigned char> bytes;
        if constexpr (requires { archive.read_file_entry(part, bytes); })
            archive.read_file_entry(part, bytes);
        else
            bytes = archive.read_file_entry(part);
        return {bytes.begin(), bytes.end()};
    }

    static std::vector<std::string> all(const std::string& text, const std::string& pattern) {
        std::vector<std::string> found;
        const std::regex regex(pattern);
        for (std::sregex_iterator at(text.begin(), text.end(), regex), end; at != end; ++at)
            found.push_back((*at)[1]);
        return found;
    }
    std::string section(const char* name) const {
        const std::string begin = std::string("<") + name + " ";
        const size_t from = styles_.find(begin);
        return styles_.substr(from, styles_.find(std::string("</") + name + ">", from) - from);
    }

    std::string look(size_t style) const {
        const auto formats = all(section("cellXfs"), "<xf ([^>]*)>");
        const std::string& xf = formats.at(style);
        const auto id = [&](const char* what) {
            return std::stoul(all(xf, std::string(what) + "=\"(\\d+)\"").at(0));
        };
        std::string told = numberFormat(id("numFmtId"));
        const auto fills = all(section("fills"), "<fill>(.*?)</fill>");
        const auto back = all(fills.at(id("fillId")), "<fgColor rgb=\"(\\w+)\"");
        if (!back.empty()) told += " back " + back[0];
        const auto fonts = all(section("fonts"), "<font>(.*?)</font>");
        const auto fore = all(fonts.at(id("fontId")), "<color rgb=\"(\\w+)\"");
        if (!fore.empty()) told += " fore " + fore[0];
        return told;
    }

    std::string numberFormat(size_t id) const {
        static const std::map<size_t, std::string> known{
            {0, "General"}, {1, "0"}, {2, "0.00"}, {49, "@"}};
        if (const auto found = known.find(id); found != known.end()) return found->second;
        return all(styles_, "numFmtId=\"" + std::to_string(id) + "\" formatCode=\"([^\"]*)\"")
            .at(0);
    }

    std::string sheet_, styles_;
    std::vector<std::string> strings_;
};

}  // namespace owb::test

#include "sidecar/points/PointTable.h"

#include "common/scanning/Text.h"

#include <Tellurion/Charsets.h>
#include <Tellurion/Numbers.h>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

namespace MapAnchor {

using Tellurion::BControlPoint;
using Tellurion::BString;

namespace {

struct Cell {
    std::string text;
    std::size_t column = 1;  ///< where it begins
};
using Cells = std::vector<Cell>;

std::string_view Trimmed(std::string_view text) {
    text = WithoutLeadingBlanks(text);
    while (!text.empty() && IsBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// A cell may be in double quotes, with two of them for one.
Cells Split(std::string_view line, char separator) {
    Cells cells(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (quoted && c == '"' && i + 1 < line.size() && line[i + 1] == '"')
            cells.back().text += line[++i];
        else if (c == '"' && (quoted || Trimmed(cells.back().text).empty()))
            quoted = !quoted;
        else if (c == separator && !quoted)
            cells.push_back({"", i + 2});
        else
            cells.back().text += c;
    }
    for (Cell& cell : cells)
        cell.text = std::string(Trimmed(cell.text));
    return cells;
}

char SeparatorOf(std::string_view line) {
    for (const char c : {'\t', ';'})
        if (line.find(c) != std::string_view::npos) return c;
    return ',';
}

std::optional<double> NumberIn(std::string text, char separator) {
    if (separator != ',' && text.find('.') == std::string::npos)
        std::replace(text.begin(), text.end(), ',', '.');
    std::string_view rest = text;
    double value = 0.0;
    if (!Tellurion::ScanDouble(rest, value) || !Trimmed(rest).empty() || !std::isfinite(value))
        return std::nullopt;
    return value;
}

/// The columns of a table, by field.
class Columns {
public:
    Columns(const Cells& names, std::size_t line) : line_(line) {
        for (const Cell& name : names)
            fields_.push_back(PointFieldOf(name.text));
        if (!Has(PointField::Pixel) && !Has(PointField::Line) && Has(PointField::X) && Has(PointField::Y) &&
            ((Has(PointField::Longitude) && Has(PointField::Latitude)) ||
             (Has(PointField::MapX) && Has(PointField::MapY))))
            // Beside a position on the Earth, x and y are the pixel.
            for (PointField& field : fields_)
                field = field == PointField::X   ? PointField::Pixel
                        : field == PointField::Y ? PointField::Line
                                                 : field;
        Require(Has(PointField::Pixel) && (Has(PointField::Line) || Has(PointField::MinusLine)),
                "there are no columns for the pixel, such as pixel and line");
        Require(HasBoth(), "there are no columns for the position, such as x and y or lon and lat");
        // pixelX and pixelY are rows downwards but in QGIS's own table.
        is_qgis_ = Has(PointField::MinusLine) &&
                   std::any_of(names.begin(), names.end(),
                               [](const Cell& name) { return ContainsInAnyCase(name.text, "mapx"); });
    }

    static bool IsHeader(const Cells& cells) {
        return std::count_if(cells.begin(), cells.end(), [](const Cell& cell) {
                   return PointFieldOf(cell.text) != PointField::None;
               }) >= 2;
    }
    bool Has(PointField field) const {
        return std::find(fields_.begin(), fields_.end(), field) != fields_.end();
    }
    bool IsQgis() const { return is_qgis_; }
    std::size_t Count() const { return fields_.size(); }
    PointField At(std::size_t column) const { return fields_[column]; }

private:
    bool HasBoth() const {
        return (Has(PointField::X) && Has(PointField::Y)) ||
               (Has(PointField::Longitude) && Has(PointField::Latitude)) ||
               (Has(PointField::MapX) && Has(PointField::MapY));
    }
    void Require(bool holds, const char* what) const {
        if (!holds) throw PointFault{line_, 1, std::string(what) + "; name the columns or give their order"};
    }

    std::size_t line_;
    std::vector<PointField> fields_;
    bool is_qgis_ = false;
};

void Put(PointField field, double value, bool minus_rows, BControlPoint& point) {
    switch (field) {
        case PointField::Pixel:
            point.Column = value;
            return;
        case PointField::MinusLine:
            point.Row = minus_rows ? 0.0 - value : value;
            return;
        case PointField::Line:
            point.Row = value;
            return;
        case PointField::X:
        case PointField::Longitude:
        case PointField::MapX:
            point.World.x = value;
            return;
        case PointField::Y:
        case PointField::Latitude:
        case PointField::MapY:
            point.World.y = value;
            return;
        case PointField::Z:
            point.World.z = value;
            return;
        default:
            return;
    }
}

BControlPoint PointOf(const Cells& cells, const Columns& columns, char separator, std::size_t line) {
    BControlPoint point;
    for (std::size_t i = 0; i < columns.Count(); ++i) {
        const PointField field = columns.At(i);
        if (field == PointField::None) continue;
        const bool optional =
            field == PointField::Z || field == PointField::Name || field == PointField::Enabled;
        if (i >= cells.size()) {
            if (optional) continue;
            throw PointFault{
                line, 1, "the row has " + std::to_string(cells.size()) + " cells, too few for its columns"};
        }
        const Cell& cell = cells[i];
        if (field == PointField::Name) {
            point.Name = BString(cell.text);
        } else if (field == PointField::Enabled) {
            std::string word;
            for (const char c : cell.text)
                word += LowerAscii(c);
            point.Enabled = word != "0" && word != "false" && word != "no" && word != "off";
        } else if (const auto value = NumberIn(cell.text, separator)) {
            Put(field, *value, columns.IsQgis(), point);
        } else if (!optional || !cell.text.empty()) {
            throw PointFault{line, cell.column, "\"" + cell.text + "\" is not a number"};
        }
    }
    return point;
}

/// True for a line that is not a row; a system may be in it.
bool IsComment(std::string_view line, PointTable& file) {
    if (Trimmed(line).empty()) return true;
    if (!line.starts_with('#')) return false;
    line.remove_prefix(1);
    line = Trimmed(line);
    if (line.starts_with("CRS:") || line.starts_with("crs:"))
        file.CoordSys = BString(std::string(Trimmed(line.substr(4))));
    return true;
}

void WarnOf(const Columns& columns, PointTable& file) {
    if (columns.Has(PointField::Longitude) && file.CoordSys.IsEmpty()) {
        file.CoordSys = "EPSG:4326";
        file.Warnings.emplace_back("longitude and latitude are taken as those of WGS 84");
    }
    const bool above =
        std::any_of(file.Points.begin(), file.Points.end(), [](const auto& p) { return p.Row < 0; });
    if (columns.IsQgis() && above)
        file.Warnings.emplace_back(
            "some rows are above the raster: where the raster had a reference when the points were set, "
            "sourceX and sourceY are not pixels");
}

}  // namespace

PointField PointFieldOf(std::string_view name) {
    std::string plain;
    for (const char c : name)
        if (c != '_' && c != ' ' && c != '-') plain += LowerAscii(c);
    static constexpr std::pair<std::string_view, PointField> kNames[] = {{"pixel", PointField::Pixel},
                                                                         {"col", PointField::Pixel},
                                                                         {"column", PointField::Pixel},
                                                                         {"sample", PointField::Pixel},
                                                                         {"sourcex", PointField::Pixel},
                                                                         {"pixelx", PointField::Pixel},
                                                                         {"imagex", PointField::Pixel},
                                                                         {"px", PointField::Pixel},
                                                                         {"line", PointField::Line},
                                                                         {"row", PointField::Line},
                                                                         {"imagey", PointField::Line},
                                                                         {"py", PointField::Line},
                                                                         {"sourcey", PointField::MinusLine},
                                                                         {"pixely", PointField::MinusLine},
                                                                         {"x", PointField::X},
                                                                         {"y", PointField::Y},
                                                                         {"mapx", PointField::MapX},
                                                                         {"mapy", PointField::MapY},
                                                                         {"easting", PointField::MapX},
                                                                         {"northing", PointField::MapY},
                                                                         {"east", PointField::MapX},
                                                                         {"north", PointField::MapY},
                                                                         {"worldx", PointField::MapX},
                                                                         {"worldy", PointField::MapY},
                                                                         {"lon", PointField::Longitude},
                                                                         {"long", PointField::Longitude},
                                                                         {"lng", PointField::Longitude},
                                                                         {"longitude", PointField::Longitude},
                                                                         {"lat", PointField::Latitude},
                                                                         {"latitude", PointField::Latitude},
                                                                         {"z", PointField::Z},
                                                                         {"height", PointField::Z},
                                                                         {"elevation", PointField::Z},
                                                                         {"name", PointField::Name},
                                                                         {"id", PointField::Name},
                                                                         {"label", PointField::Name},
                                                                         {"point", PointField::Name},
                                                                         {"enable", PointField::Enabled},
                                                                         {"enabled", PointField::Enabled},
                                                                         {"use", PointField::Enabled},
                                                                         {"used", PointField::Enabled}};
    for (const auto& [known, field] : kNames)
        if (plain == known) return field;
    return PointField::None;
}

PointTable ParsePointTable(std::string_view text, std::string_view order, const BString& system) {
    PointTable file;
    if (text.starts_with("\xef\xbb\xbf")) text.remove_prefix(3);
    std::optional<Columns> columns;
    if (!order.empty()) columns.emplace(Split(order, ','), 0);
    std::optional<char> separator;
    std::size_t number = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view bytes = text.substr(0, end);
        if (bytes.ends_with('\r')) bytes.remove_suffix(1);
        const std::string line = Tellurion::DecodeLine(bytes).StdStr();
        text.remove_prefix(std::min(end + 1, text.size()));
        ++number;
        if (IsComment(line, file)) continue;
        if (!separator) separator = SeparatorOf(line);
        const Cells cells = Split(line, *separator);
        const bool is_first = file.Points.empty() && Columns::IsHeader(cells);
        if (is_first && !columns) {
            columns.emplace(cells, number);
            file.OldHeader = columns->IsQgis() && ContainsInAnyCase(line, "pixelx");
            continue;
        }
        if (is_first && !order.empty()) continue;
        if (!columns)
            throw PointFault{
                number, 1,
                "the table has no header: name its columns in the first line, or give their order, "
                "such as pixel,line,x,y"};
        file.Points.push_back(PointOf(cells, *columns, *separator, number));
    }
    if (!columns) throw PointFault{0, 0, "the file has no control points"};
    file.IsQgis = columns->IsQgis();
    if (!system.IsEmpty()) file.CoordSys = system;
    WarnOf(*columns, file);
    return file;
}

}  // namespace MapAnchor

#include "commands/GeoreferenceReport.h"

#include "read/ReferenceFacts.h"
#include "read/Systems.h"

#include <Tellurion/Numbers.h>
#include <Tellurion/Printable.h>
#include <Tellurion/XmlText.h>

#include <cmath>

namespace Tool {

using namespace Tellurion;

namespace {

constexpr const char* kHead = R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8">
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width, initial-scale=1">
<style>
body{font:15px/1.5 system-ui,sans-serif;color:#222;background:#fff;max-width:60em;margin:2em auto;padding:0 1em}
h1{font-size:1.5em;overflow-wrap:anywhere}h2{font-size:1.15em;margin-top:1.6em}
dt{font-weight:600}dd{margin:0 0 .4em 0;overflow-wrap:anywhere}
table{border-collapse:collapse;font-variant-numeric:tabular-nums;font-size:.9em}
.wide{overflow-x:auto}th,td{padding:.25em .7em;border-bottom:1px solid #ddd;text-align:right;white-space:nowrap}
th:first-child,td:first-child,th:last-child,td:last-child{text-align:left}
th button{font:inherit;font-weight:600;border:0;background:none;padding:0;cursor:pointer}
tr.suspect td{background:#fdecea}tr.unused td{color:#777}tr.chosen td{background:#eaf5ea}
svg{display:block;width:100%;height:auto;border:1px solid #ddd;background:#fff}
svg text{font:11px sans-serif;fill:#333}.raster{fill:#f7f7f4;stroke:#555}
.point circle{fill:#0b62a4}.suspect circle{fill:#c0271d}.unused circle{fill:#fff;stroke:#777}
.shaft{stroke:#d9730d;stroke-width:1.6;fill:none}.head{fill:#d9730d}
.suspect .shaft{stroke:#c0271d}.suspect .head{fill:#c0271d}.unused .shaft{stroke:#999}.unused .head{fill:#999}
</style>
)";

constexpr const char* kScript = R"(<script>
for (const button of document.querySelectorAll('th button')) button.onclick = () => {
  const cell = button.parentElement, body = cell.closest('table').tBodies[0];
  const at = [...cell.parentElement.children].indexOf(cell);
  const down = cell.dataset.order !== 'down';
  cell.dataset.order = down ? 'down' : 'up';
  const key = row => { const t = row.cells[at].textContent, n = parseFloat(t); return isNaN(n) || at === 0 ? t : n; };
  const compare = (a, b) => typeof a === 'number' && typeof b === 'number' ? a - b : String(a).localeCompare(String(b), 'en', {numeric: true});
  [...body.rows].sort((a, b) => (down ? -1 : 1) * compare(key(a), key(b))).forEach(row => body.append(row));
};
</script>
)";

std::string Fixed(bool has, double value) {
    return has ? PrintFixed(value, 3) : "-";
}

std::string Fact(const char* name, const std::string& text) {
    return "<dt>" + std::string(name) + "</dt><dd>" + HtmlText(text) + "</dd>\n";
}

std::string Facts(const Georeferenced& made) {
    const BFitReport& report = *made.report;
    std::string unit;
    std::string text = "<dl>\n";
    if (made.result.reference.HasCoordSys()) {
        const BCoordSys& system = *made.result.reference.CoordSys;
        if (const auto units = system.GetUnits()) unit = units->GetName().StdStr();
        text += Fact("Coordinate system", NameOf(system));
    }
    text += Fact("Fit", std::string(WordFor(report.Transform.GetMathTransformType())) + " through " +
                            std::to_string(report.Used) + " points");
    text += Fact("Shape", report.DescribeShape(BString(unit)).StdStr());
    text += Fact("Root mean square of the residuals", Fixed(report.HasRmse, report.RmsePixels) + " px");
    text += Fact("The same, adjusted for degrees of freedom",
                 Fixed(report.HasRmseAdjusted, report.RmseAdjustedPixels) + " px");
    text += Fact("The same of the left-out residuals, each from the fit without its point",
                 Fixed(report.HasLeftOutRmse, report.LeftOutRmsePixels) + " px");
    if (report.HasHullShare)
        text += Fact("Part of the raster that the points' hull covers",
                     PrintFixed(report.HullShare * 100, 1) + " %");
    return text + "</dl>\n";
}

std::string HeadOf(std::initializer_list<const char*> names) {
    std::string text = "<div class=\"wide\"><table><thead><tr>";
    for (const char* const name : names)
        text += "<th><button type=\"button\">" + std::string(name) + "</button></th>";
    return text + "</tr></thead><tbody>\n";
}

std::string RowOf(const char* style, const std::vector<std::string>& cells) {
    std::string text = "<tr class=\"" + std::string(style) + "\">";
    for (const std::string& cell : cells)
        text += "<td>" + HtmlText(cell) + "</td>";
    return text + "</tr>\n";
}

std::string PointTableOf(const Georeferenced& made) {
    std::string text = HeadOf(
        {"point", "pixel", "line", "x", "y", "dx px", "dy px", "residual px", "left out px", "remark"});
    for (std::size_t i = 0; i < made.points.size(); ++i) {
        const BControlPoint& point = made.points[i];
        const BFitResidual& r = made.report->Residuals[i];
        text += RowOf(!point.Enabled ? "unused"
                      : r.Suspect    ? "suspect"
                                     : "",
                      {point.Name.StdStr(), PrintShortest(point.Column), PrintShortest(point.Row),
                       PrintShortest(point.World.x), PrintShortest(point.World.y),
                       Fixed(r.HasResidual, r.DxPixels), Fixed(r.HasResidual, r.DyPixels),
                       Fixed(r.HasResidual, r.ResidualPixels), Fixed(r.HasLeftOut, r.LeftOutPixels),
                       !point.Enabled ? "left out"
                       : r.Suspect    ? "suspect"
                                      : ""});
    }
    return text + "</tbody></table></div>\n";
}

std::string FitTableOf(const Georeferenced& made) {
    std::string text = HeadOf({"fit", "left out px", "remark"});
    for (const BFitAlternative& fit : made.alternatives)
        text += RowOf(fit.Chosen ? "chosen" : "",
                      {WordFor(fit.Type), Fixed(fit.HasLeftOut, fit.LeftOutRmsePixels),
                       fit.Chosen ? "the simplest that is not worse" : fit.Reason.StdStr()});
    return text + "</tbody></table></div>\n";
}

}  // namespace

std::string HtmlText(const std::string& text) {
    return XmlEscaped(Printable(text));
}

std::string RenderReportPage(const GeoreferenceOptions& options, const Georeferenced& made) {
    const std::string name = HtmlText(options.image);
    std::string text = kHead;
    text +=
        "<title>Georeference of " + name + "</title></head>\n<body>\n<h1>Georeference of " + name + "</h1>\n";
    text += Facts(made);
    for (const Diagnostic& remark : made.result.diagnostics)
        text += "<p><strong>Note:</strong> " + HtmlText(remark.text) + "</p>\n";
    text += "<h2>Residuals</h2>\n" + DrawResiduals(made);
    text += "<h2>Points</h2>\n" + PointTableOf(made);
    text += "<h2>Fits compared</h2>\n" + FitTableOf(made);
    return text + kScript + "</body></html>\n";
}

}  // namespace Tool

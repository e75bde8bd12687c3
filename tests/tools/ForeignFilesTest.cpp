// What a file names is not opened, on this machine or another one. The system's calls say so.

#include <gtest/gtest.h>

#include "RunTool.h"

namespace {

std::string Vrt(const std::string& source) {
    return "<VRTDataset rasterXSize='9' rasterYSize='9'><GeoTransform>1,1,0,1,0,-1</GeoTransform>"
           "<VRTRasterBand dataType='Byte' band='1' " +
           source + "</VRTRasterBand></VRTDataset>";
}

TEST(ForeignFiles, AreNotOpenedAndNoHostIsAsked) {
    const TempFolder elsewhere;
    const ToolFolder folder;
    const std::string secret = elsewhere.Write("secret.tif", "II*");
    const std::string url = "http://127.0.0.1:9/x";
    const std::string texts[] = {
        url,
        Vrt("subClass='VRTRawRasterBand'><SourceFilename relativeToVRT='0'>" + secret + "</SourceFilename>"),
        Vrt("><SimpleSource><SourceFilename>" + secret + "</SourceFilename></SimpleSource>"),
        Vrt("><SimpleSource><SourceFilename>/vsicurl/" + url + "</SourceFilename></SimpleSource>"),
        "<WCS_GDAL><ServiceURL>" + url + "?</ServiceURL><CoverageName>x</CoverageName></WCS_GDAL>",
        "<GDAL_WMS><Service name='IIP'><ServerUrl>" + url + "</ServerUrl></Service></GDAL_WMS>",
        "<GDAL_WMTS><GetCapabilitiesUrl>" + url + "</GetCapabilitiesUrl><Layer>x</Layer></GDAL_WMTS>",
        "<MRF_META><CachedSource><Source>" + secret +
            "</Source></CachedSource><Raster><Size x='9' y='9' c='1'/>"
            "<DataFile>" +
            secret + "</DataFile></Raster></MRF_META>",
        "<kml><GroundOverlay><Icon><href>" + secret + "</href></Icon></GroundOverlay><Region/></kml>",
        R"({"type":"FeatureCollection","stac_version":"1.0.0","features":[{"type":"Feature","stac_version":)"
        R"("1.0.0","properties":{"proj:epsg":4326,"proj:transform":[1,0,0,0,-1,0],"proj:shape":[9,9]},)"
        R"("assets":{"a":{"href":")" +
            url + R"("}}}]})",
        "%PDF-1.4\n1 0 obj <</F (" + secret + ")>> endobj\n",
        "PK\3\4" + secret,
        std::string(32768, '\0') + "\1CD001\1" + secret,
        "!(" + secret + ")\n"};
    std::vector<std::string> names;
    for (const char* extension : {"tif", "dem", "asc", "jp2", "adf", "kap", "sid", "xyz", "pdf"})
        for (const std::string& text : texts)
            names.push_back(folder.Write(std::to_string(names.size()) + "." + extension, text));
    names.push_back(folder.Write("map.tfw", "1\n0\n0\n-1\n5\n5\n"));
    folder.Write("map.prj",
                 "GEOGCS[\"x\",DATUM[\"x\",SPHEROID[\"b\",6377397,299.15],EXTENSION[\"PROJ4_GRIDS\",\"" +
                     secret + "\"]],PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]");
    folder.Write("place.tfw", "1\n0\n0\n-1\n5\n5\n");
    const std::vector<std::vector<std::string>> commands = {{"info"},
                                                            {"info", "--type", "tif"},
                                                            {"footprint", "--size", "9x9"},
                                                            {"crs", "+proj=longlat +nadgrids=" + secret}};
    for (std::vector<std::string> words : commands) {
        const std::string calls = folder / "calls";
        words.insert(words.begin(),
                     {"-f", "-qq", "-e", "trace=open,openat,socket,connect", "-o", calls, MAPANCHOR_TOOL});
        if (words[7] != "crs") words.insert(words.end(), names.begin(), names.end());
        const ToolRun run = RunTool(words, {.program = "/usr/bin/strace"});
        if (words.back().ends_with("map.tfw") && words[8] != "--type") {  // people are shown the reason
            EXPECT_NE(run.err.find("driver WCS, which opens hosts"), std::string::npos) << words[7];
        }
        const std::string trace = TempFolder::Slurp(calls);
        if (trace.find("openat(") == std::string::npos) GTEST_SKIP() << "needs strace: " << run.err;
        for (const std::string& what : {std::string("socket("), std::string("connect("), secret})
            EXPECT_EQ(trace.find(what), std::string::npos) << words[7] << what;
    }
}

}  // namespace

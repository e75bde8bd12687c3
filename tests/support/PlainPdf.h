#pragma once

#include <cstdio>
#include <string>
#include <vector>

inline std::string Repeated(const std::string& text, std::size_t times) {
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

/// A PDF file put together from its objects; object n is the nth, the first is the
/// catalog. The cross-reference table and the trailer are added.
inline std::string PlainPdf(const std::vector<std::string>& objects, const std::string& trailer_keys = "") {
    std::string pdf = "%PDF-1.6\n%\xE2\xE3\xCF\xD3\n";
    std::string table = "0000000000 65535 f \n";
    for (std::size_t i = 0; i < objects.size(); ++i) {
        char entry[24];
        std::snprintf(entry, sizeof entry, "%010zu 00000 n \n", pdf.size());
        table += entry;
        pdf += std::to_string(i + 1) + " 0 obj\n" + objects[i] + "\nendobj\n";
    }
    const std::string count = std::to_string(objects.size() + 1);
    const std::string start = std::to_string(pdf.size());
    return pdf + "xref\n0 " + count + "\n" + table + "trailer\n<< /Size " + count + " /Root 1 0 R " +
           trailer_keys + " >>\nstartxref\n" + start + "\n%%EOF\n";
}

/// A stream object with its length.
inline std::string PdfStreamObject(const std::string& bytes, const std::string& keys = "") {
    return "<< /Length " + std::to_string(bytes.size()) + " " + keys + " >>\nstream\n" + bytes +
           "\nendstream";
}

/// One page of that size in points with a red rectangle, a bookmark, metadata and an
/// annotation, none of which georeferencing may touch.
inline std::string RichPdf(int width, int height) {
    const std::string box = "[0 0 " + std::to_string(width) + " " + std::to_string(height) + "]";
    return PlainPdf({
        "<< /Type /Catalog /Pages 2 0 R /Outlines 6 0 R /Metadata 8 0 R >>",
        "<< /Type /Pages /Kids [3 0 R 9 0 R] /Count 2 >>",
        "<< /Type /Page /Parent 2 0 R /MediaBox " + box +
            " /Contents 4 0 R /Resources << >> /Annots [5 0 R] >>",
        PdfStreamObject("1 0 0 rg 10 10 50 30 re f"),
        "<< /Type /Annot /Subtype /Text /Rect [20 20 40 40] /Contents (A note) >>",
        "<< /Type /Outlines /First 7 0 R /Last 7 0 R /Count 1 >>",
        "<< /Title (A bookmark) /Parent 6 0 R /Dest [3 0 R /Fit] >>",
        PdfStreamObject("<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"/>", "/Type /Metadata /Subtype /XML"),
        "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 100 100] /Contents 10 0 R /Resources << >> >>",
        PdfStreamObject("0 0 1 rg 0 0 50 50 re f"),
    });
}

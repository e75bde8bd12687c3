#pragma once

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

/// A PDF of one page as text: catalog 1, page tree 2, page 3, then the objects that a
/// test adds, from 4 on. The cross-reference table is right.
class PagePdf {
public:
    /// Entries of the page's dictionary behind its type and parent.
    explicit PagePdf(std::string page) : page_(std::move(page)) {}

    /// Adds object 4, 5, ... in this order.
    PagePdf& Add(std::string object) {
        objects_.push_back(std::move(object));
        return *this;
    }
    /// Entries of the page tree's dictionary, which pages inherit.
    PagePdf& Inherit(std::string entries) {
        inherited_ = std::move(entries);
        return *this;
    }

    std::string Text() const {
        std::vector<std::string> all = {"<< /Type /Catalog /Pages 2 0 R >>",
                                        "<< /Type /Pages /Kids [ 3 0 R ] /Count 1 " + inherited_ + " >>",
                                        "<< /Type /Page /Parent 2 0 R " + page_ + " >>"};
        all.insert(all.end(), objects_.begin(), objects_.end());
        std::string text = "%PDF-1.6\n";
        std::string table;
        for (std::size_t i = 0; i < all.size(); ++i) {
            char row[32];
            std::snprintf(row, sizeof row, "%010zu 00000 n \n", text.size());
            table += row;
            text += std::to_string(i + 1) + " 0 obj\n" + all[i] + "\nendobj\n";
        }
        const std::string count = std::to_string(all.size() + 1);
        return text + "xref\n0 " + count + "\n0000000000 65535 f \n" + table +
               "trailer\n<< /Root 1 0 R /Size " + count + " >>\nstartxref\n" + std::to_string(text.size()) +
               "\n%%EOF\n";
    }

private:
    std::string page_;
    std::string inherited_;
    std::vector<std::string> objects_;
};

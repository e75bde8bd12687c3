#pragma once

#include "PlainPdf.h"

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
        return PlainPdf(all);
    }

private:
    std::string page_;
    std::string inherited_;
    std::vector<std::string> objects_;
};

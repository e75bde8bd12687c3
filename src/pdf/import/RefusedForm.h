#pragma once

#include <string>

namespace VellumLib {

class CPDFDocument;

/// Looks for a form that other software writes or accepts and the importers refuse, and
/// says in a sentence what was expected and what is there. Empty when there is none.
std::string ExplainRefusedForm(CPDFDocument& document);

}  // namespace VellumLib

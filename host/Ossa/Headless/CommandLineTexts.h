#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

/// What is told about a command line outside of the program, from the definition that parses it: a page of the
/// manual (roff), and completions for shells.
namespace CommandLineTexts {

/// Of describe(), in this order.
std::vector<std::string> forms();
/// Empty for a form that is none. The version is told in the page.
std::string describe(CLI::App *app, const std::string &form, const std::string &version);

} // namespace CommandLineTexts

// The descriptions of node types and the kernels must speak of the same ports and attributes.

#include "OssEvaluation/Graph/OssEvKernelLibrary.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

namespace {

/// As much of an element as matters here: its attributes.
using Attributes = std::map<std::string, std::string>;

std::vector<Attributes> elements(const std::string &xml, const std::string &name)
{
    static const std::regex pair("([A-Za-z]+)=\"([^\"]*)\"");
    const std::regex element("<" + name + "(\\s[^>]*)>");
    std::vector<Attributes> found;
    for (std::sregex_iterator match(xml.begin(), xml.end(), element), end; match != end; ++match) {
        Attributes attributes;
        const std::string text = (*match)[1];
        for (std::sregex_iterator entry(text.begin(), text.end(), pair); entry != end; ++entry)
            attributes[(*entry)[1]] = (*entry)[2];
        found.push_back(attributes);
    }
    return found;
}

std::vector<std::string> split(const std::string &text)
{
    std::vector<std::string> parts;
    std::istringstream stream(text);
    for (std::string part; std::getline(stream, part, ',');)
        parts.push_back(part);
    return parts;
}

/// The attribute's default in the type that a document would pass on.
OssEvParameter defaultOf(const Attributes &attribute)
{
    const std::string &type = attribute.at("Type");
    const std::string &text = attribute.at("Default");
    if (type == "color" || type == "vector2") {
        std::vector<double> numbers;
        for (const std::string &part : split(text))
            numbers.push_back(std::atof(part.c_str()));
        numbers.resize(4, 0.0);
        if (type == "vector2")
            return OssEvVector2{numbers[0], numbers[1]};
        return OssEvColor{float(numbers[0]), float(numbers[1]), float(numbers[2]),
                          float(numbers[3])};
    }
    if (type == "boolean")
        return text == "true";
    if (type == "integer")
        return std::int64_t(std::atoll(text.c_str()));
    if (type == "real")
        return std::atof(text.c_str());
    return text;
}

int channelsOf(const std::string &kind)
{
    return kind == "Scalar" ? 1 : kind == "Vector" ? 3 : 4;
}

// Ports of groups and types that the document resolves before anything is computed.
bool isResolvedByTheDocument(const std::string &xml)
{
    return xml.find("_input") != std::string::npos || xml.find("_output") != std::string::npos
           || xml.find("_GraphLayerInput") != std::string::npos;
}

void comparePorts(const OssEvKernel &kernel, const std::string &xml, const std::string &file)
{
    for (const Attributes &input : elements(xml, "Input")) {
        const int index = kernel.inputIndex(input.at("Name"));
        ASSERT_GE(index, 0) << file << ": input " << input.at("Name");
        const int channels = kernel.inputs[std::size_t(index)].channels;
        // A colour may be read as its brightness.
        EXPECT_TRUE(channels <= 1 || channels == channelsOf(input.at("Kind")))
            << file << ": input " << input.at("Name");
    }
    EXPECT_LE(elements(xml, "Input").size(), kernel.inputs.size()) << file;
    for (const Attributes &output : elements(xml, "Output")) {
        const int index = kernel.outputIndex(output.at("Name"));
        ASSERT_GE(index, 0) << file << ": output " << output.at("Name");
        const int channels = kernel.outputs[std::size_t(index)].channels;
        EXPECT_TRUE(channels == 0 || kernel.outputChannels
                    || channels == channelsOf(output.at("Kind")))
            << file << ": output " << output.at("Name");
    }
}

void compareAttributes(const OssEvKernel &kernel, const std::string &xml, const std::string &file)
{
    OssEvParameters defaults;
    ASSERT_TRUE(kernel.normalise({}, &defaults));
    for (const Attributes &attribute : elements(xml, "Attribute")) {
        const std::string &name = attribute.at("Name");
        const auto found = std::find_if(kernel.parameters.begin(), kernel.parameters.end(),
                                        [&name](const auto &known) { return known.name == name; });
        if (found == kernel.parameters.end()) {
            EXPECT_TRUE(kernel.name == "pass" || kernel.name == "imageSet")
                << file << ": " << name << " is nothing that only the document needs";
            continue;
        }
        OssEvParameters complete;
        const OssEvResult result = kernel.normalise({{name, defaultOf(attribute)}}, &complete);
        ASSERT_TRUE(result) << file << ": " << result.error();
        // The constant tells by what it is given whether it is a colour.
        const bool same = complete.at(name) == defaults.at(name) || kernel.name == "constant"
                          || attribute.at("Type") == "text" || attribute.at("Type") == "curve"
                          || attribute.at("Type") == "ramp";
        EXPECT_TRUE(same) << file << ": default of " << name;
        if (attribute.count("Choices") != 0) {
            EXPECT_EQ(split(attribute.at("Choices")), found->choices) << file << ": " << name;
        }
        if (attribute.count("Minimum") != 0) {
            EXPECT_EQ(std::atof(attribute.at("Minimum").c_str()), found->minimum)
                << file << ": " << name;
        }
        if (attribute.count("Maximum") != 0) {
            EXPECT_EQ(std::atof(attribute.at("Maximum").c_str()), found->maximum)
                << file << ": " << name;
        }
    }
}

TEST(NodeTypes, everyKernelTheyNameTakesTheirPortsAndAttributes)
{
    const char *root = std::getenv("OSSA_ROOT");
    ASSERT_NE(root, nullptr) << "OSSA_ROOT names the source tree";
    std::set<std::string> used;
    const std::filesystem::path folder = std::filesystem::path(root) / "host" / "NodeTypes";
    for (const auto &entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".xml")
            continue;
        std::ifstream stream(entry.path());
        std::ostringstream text;
        text << stream.rdbuf();
        const std::string xml = text.str();
        const std::string file = entry.path().filename().string();
        const Attributes type = elements(xml, "NodeType").at(0);
        const auto name = type.find("Kernel");
        if (name == type.end())
            continue;
        const OssEvKernel *kernel = OssEvKernelLibrary::find(name->second);
        ASSERT_NE(kernel, nullptr) << file << " names " << name->second;
        used.insert(kernel->name);
        if (isResolvedByTheDocument(xml))
            continue;
        comparePorts(*kernel, xml, file);
        compareAttributes(*kernel, xml, file);
    }
    EXPECT_GT(used.size(), 30U);
    for (const OssEvKernel &kernel : OssEvKernelLibrary::kernels())
        EXPECT_LE(kernel.inputs.size(), OssEvStrip::MaximumInputs) << kernel.name;
}

} // namespace

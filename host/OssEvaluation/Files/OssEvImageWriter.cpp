#include "OssEvaluation/Files/OssEvImageWriter.h"

#include "OssEvaluation/Files/OssEvImageFormat.h"

#include <exception>

OssEvImageWriter::~OssEvImageWriter() = default;

OssEvResult OssEvImageWriter::open(const std::string &path, const Description &description,
                                   std::unique_ptr<OssEvImageWriter> *writer)
{
    if (description.width <= 0 || description.height <= 0)
        return OssEvResult::failure("Cannot write \"" + path + "\": it has no texels");
    const OssEvImageFormat *format = OssEvImageFormat::ofFile(path);
    if (format == nullptr || format->writer == nullptr)
        return OssEvResult::failure("Cannot write \"" + path + "\": images are written as "
                                    + OssEvImageFormat::writtenInWords("."));
    Description complete = description;
    if (!complete.form.depth)
        complete.form.depth = format->depths.front();
    const OssEvResult possible = format->check(complete.form);
    if (!possible)
        return OssEvResult::failure("Cannot write \"" + path + "\": " + possible.error());
    try {
        *writer = format->writer(path, complete);
        return {};
    } catch (const std::exception &fault) {
        const std::string reason = fault.what();
        const bool isWhole = reason.rfind("Cannot write", 0) == 0;
        return OssEvResult::failure(isWhole ? reason : "Cannot write \"" + path + "\": " + reason);
    }
}

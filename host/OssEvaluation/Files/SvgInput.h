#pragma once

/// Vector drawings as pictures, for OpenImageIO, by librsvg.
namespace OssEvSvgInput {

/// Of the square in whose middle a drawing lies, as large as it fits.
constexpr int Side = 4096;

/// Has OpenImageIO open them as any other picture: 8 bits a channel, as the screen has colours. What a
/// drawing refers to outside its file is not read. Any thread, as often as one likes.
void makeKnown();

} // namespace OssEvSvgInput

#pragma once

/// UDIM numbers: 1001 is the unit square of the texture space, 1002 its neighbour in u, 1011 its
/// neighbour in v. Ten patches make a row.
namespace OssEvPatch {

constexpr int First = 1001;
constexpr int Last = 9999;
constexpr int PatchesPerRow = 10;

constexpr bool isValid(int patch)
{
    return patch >= First && patch <= Last;
}

/// Integer part of u, 0 to 9.
constexpr int column(int patch)
{
    return (patch - First) % PatchesPerRow;
}

/// Integer part of v.
constexpr int row(int patch)
{
    return (patch - First) / PatchesPerRow;
}

/// 0 where the place lies outside what UDIM numbers can name.
constexpr int number(int column, int row)
{
    const int patch = First + column + PatchesPerRow * row;
    return column < 0 || column >= PatchesPerRow || row < 0 || patch > Last ? 0 : patch;
}

} // namespace OssEvPatch

#pragma once

#include <QSize>
#include <QString>

#include <string>
#include <vector>

/// What "ossa render" was asked for.
struct RenderOptions
{
    static constexpr int largest = 8192; ///< pixels of a picture's side

    QString project;
    QString output;
    QString node; ///< by name or path; empty: the objects' materials
    QString environment;
    QString background; ///< one of backgrounds()
    float turn = 0.0F;  ///< degrees
    QSize size{1280, 720};
    int frames = 0; ///< of a turntable; 0: one picture
    int resolution = 2048;
    int levels = 0; ///< how often triangles are divided for surfaces that really stand out

    /// "plain", "environment", "blurred"; the first is the usual one.
    static std::vector<std::string> backgrounds();
    /// Those of the program's own, for people.
    static std::string environments();
    /// "1280x720"; empty where it is none, or too large.
    static QSize toSize(const QString &text);
};

/// Draws what the options say into files. The exit code.
int runRenderCommand(const RenderOptions &options);

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Paint/OssEvSurfaceStroke.h"

#include <glm/geometric.hpp>
#include <glm/gtc/matrix_transform.hpp>

#include <cmath>
#include <cstdio>
#include <ctime>
#include <functional>

// Painting on an object of a million triangles whose one patch has 4096 x 4096 texels: processor time of
// the first dab of a stroke, of those that follow, and of what is made ready before.

namespace {

constexpr int Columns = 1000;
constexpr int Rows = 500;
constexpr int Resolution = 4096;
constexpr int Width = 1280;
constexpr int Height = 720;
constexpr double Across = 200.0; // of a dab, texels
constexpr int Strokes = 40;

/// A ball with dents, its poles cut off.
std::shared_ptr<const OssEvMesh> object()
{
    auto mesh = std::make_shared<OssEvMesh>();
    for (int y = 0; y <= Rows; ++y) {
        for (int x = 0; x <= Columns; ++x) {
            const float u = float(x) / Columns;
            const float v = float(y) / Rows;
            const float around = u * 6.2831853F;
            const float up = (v - 0.5F) * 3.0F;
            const float radius = 1.0F + 0.02F * std::sin(40.0F * u) * std::cos(60.0F * v);
            mesh->positions.push_back({radius * std::cos(up) * std::sin(around),
                                       radius * std::sin(up),
                                       radius * std::cos(up) * std::cos(around)});
            mesh->uvs.push_back({0.001F + 0.998F * u, 0.001F + 0.998F * v});
        }
    }
    for (int y = 0; y < Rows; ++y) {
        for (int x = 0; x < Columns; ++x) {
            const auto a = std::uint32_t(y * (Columns + 1) + x);
            const std::uint32_t b = a + std::uint32_t(Columns) + 1;
            mesh->triangles.push_back({a, a + 1, b + 1});
            mesh->triangles.push_back({a, b + 1, b});
            mesh->faces.push_back(y * Columns + x);
            mesh->faces.push_back(y * Columns + x);
        }
    }
    if (!mesh->finish("object").ok())
        return nullptr;
    return mesh;
}

double milliseconds(const std::function<void()> &work)
{
    const std::clock_t begin = std::clock();
    work();
    return 1e3 * double(std::clock() - begin) / CLOCKS_PER_SEC;
}

struct Object
{
    std::shared_ptr<OssEvPaintSurface> surface;
    std::shared_ptr<const OssEvPaintView> view;
};

/// Of a stroke over what is painted already, 4 pixels on, in the mean.
double strokeOf(const Object &object, OssEvPaintBuffer *buffer, const OssEvBrush &brush)
{
    OssEvSurfaceStroke stroke(buffer, brush, object.surface, object.view);
    stroke.moveTo(420.0, 340.0);
    double spent = 0.0;
    int steps = 0;
    for (double x = 424.0; x < 860.0; x += 4.0, ++steps)
        spent += milliseconds([&] { stroke.moveTo(x, 340.0 + 10.0 * std::sin(x / 30.0)); });
    return spent / steps;
}

void benchTools(const Object &object, OssEvPaintBuffer *buffer, OssEvBrush brush)
{
    brush.blend = 3; // Multiply
    std::printf("%-44s %8.2f ms\n", "blending, 4 pixels on", strokeOf(object, buffer, brush));
    brush.blend = 0;
    brush.cloneFrom = {0.0, 60.0};
    brush.tool = OssEvBrush::Tool::Clone;
    std::printf("%-44s %8.2f ms\n", "cloning, 4 pixels on", strokeOf(object, buffer, brush));
    brush.tool = OssEvBrush::Tool::Smear;
    std::printf("%-44s %8.2f ms\n", "smearing, 4 pixels on", strokeOf(object, buffer, brush));
    brush.tool = OssEvBrush::Tool::Blur;
    std::printf("%-44s %8.2f ms\n", "blurring, 4 pixels on", strokeOf(object, buffer, brush));
    brush.tool = OssEvBrush::Tool::Fill;
    OssEvSurfaceStroke fill(buffer, brush, object.surface, object.view);
    std::printf("%-44s %8.0f ms\n", "filling all of the patch, on a thread",
                milliseconds([&] { fill.fill(std::nullopt, [](double) { return true; }); }));
}

} // namespace

int main()
{
    const auto mesh = object();
    if (!mesh)
        return 1;
    std::shared_ptr<OssEvPaintSurface> surface;
    std::printf("%-44s %8.1f ms\n", "made ready: the surface", milliseconds([&] {
                    surface = std::make_shared<OssEvPaintSurface>(mesh, Resolution);
                }));
    const glm::mat4 clip = glm::perspective(0.6F, float(Width) / Height, 0.1F, 100.0F)
                           * glm::lookAt(glm::vec3(0, 0, 3.2F), glm::vec3(0.0F),
                                         glm::vec3(0, 1, 0));
    std::shared_ptr<const OssEvPaintView> view;
    std::printf("%-44s %8.1f ms\n", "made ready: a view's depths", milliseconds([&] {
                    view = std::make_shared<OssEvPaintView>(surface.get(), clip, Width, Height);
                }));
    OssEvPaintBuffer buffer(Resolution);
    OssEvBrush brush;
    brush.radius = Across / 2.0;
    double first = 0.0;
    double following = 0.0;
    double worst = 0.0;
    int dabs = 0;
    double early = 0.0;
    for (int i = 0; i < Strokes; ++i) {
        OssEvSurfaceStroke stroke(&buffer, brush, surface, view);
        const double y = 160.0 + 400.0 * (i * 7 % Strokes) / Strokes;
        first += milliseconds([&] { stroke.moveTo(420.0, y); }) / Strokes;
        double spent = 0.0;
        // A pixel or so from dab to dab.
        for (double x = 424.0; x < 860.0; x += 4.0) {
            const double step = milliseconds(
                [&] { stroke.moveTo(x, y + 10.0 * std::sin(x / 30.0)); });
            worst = std::max(worst, step);
            spent += step;
            ++dabs;
        }
        following += spent;
        if (i == Strokes / 10)
            early = following / dabs;
    }
    const double late = following / dabs;
    std::printf("%-44s %8.2f ms\n", "a stroke's first dab, in the mean", first);
    std::printf("%-44s %8.2f ms\n", "4 pixels on, in the mean", late);
    std::printf("%-44s %8.2f ms\n", "4 pixels on, the worst", worst);
    std::printf("%-44s %8.2f\n", "after 40 strokes, by that of the first 5", late / early);
    benchTools({surface, view}, &buffer, brush);
    return 0;
}

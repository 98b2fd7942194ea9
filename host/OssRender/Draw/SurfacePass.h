#pragma once

#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssRender/Draw/DeviceCopies.h"
#include "OssRender/Draw/GlObjects.h"
#include "OssRender/Draw/OssRdScene.h"
#include "OssRender/Draw/ShadowMap.h"

#include <map>
#include <string>

// Units of textures, of all passes.
enum Unit {
    ColorUnit,
    ShapeUnit,
    GlowUnit,
    CoatUnit,
    MirrorUnit,
    TableUnit,
    ShadowUnit,
    SkyUnit,
    SharpUnit,
    DullUnit
};

/// From a world that is turned by an angle around y.
glm::mat3 turnedBack(float angle);

/// Draws the objects of a scene. For each way of drawing there is a program that has nothing else in it,
/// made when it is first needed: software takes its time for branches that nobody goes. The device must
/// be current.
class SurfacePass
{
public:
    /// `problem` gets what the compiler says.
    bool build(std::string *problem);
    void draw(const OssRdScene &scene, const OssRdView &view, const ShadowMap &shadow,
              DeviceCopies *copies);

private:
    enum Way {
        Lit = 1,
        Sampled = 2, ///< looks around for what it mirrors
        Coarse = 4,
        Bumps = 8,
        Coated = 16,
        Wires = 32
    };

    static int wayOf(const OssRdScene &scene, const OssRdView &view);
    /// Null where the compiler refuses it.
    GlProgram *program(int way, std::string *problem);
    void makeTable();
    void prepare(GlProgram *program, const OssRdScene &scene, const OssRdView &view,
                 const ShadowMap &shadow, DeviceCopies *copies) const;
    static void bindMaterial(GlProgram *program, const OssRdMaterial &material,
                             DeviceCopies *copies);
    static void drawObject(GlProgram *program, const OssRdScene::Object &object, bool isCoarse,
                           DeviceCopies *copies);
    static void drawAll(GlProgram *program, const OssRdScene &scene, const OssRdView &view,
                        DeviceCopies *copies);
    void drawWires(const OssRdScene &scene, const OssRdView &view, const ShadowMap &shadow,
                   DeviceCopies *copies);

    std::map<int, GlProgram> m_programs; ///< by way
    GlTexture m_table;
    GlSampler m_coarseTexels; ///< takes one of a texture's sizes
};

#include "OssEvaluation/Geometry/GltfScene.h"

#include <algorithm>
#include <filesystem>

namespace {

constexpr int DeepestNode = 1000;
constexpr std::size_t MostCount = std::size_t(1) << 31;

bool leaveImage(tinygltf::Image * /*image*/, const int /*index*/, std::string * /*error*/,
                std::string * /*warning*/, int /*width*/, int /*height*/,
                const unsigned char * /*bytes*/, int /*size*/, void * /*user*/)
{
    return true;
}

bool load(const std::string &path, tinygltf::Model *model)
{
    tinygltf::TinyGLTF loader;
    std::string error;
    std::string warning;
    loader.SetImageLoader(leaveImage, nullptr);
    const bool isBinary = std::filesystem::path(path).extension() == ".glb";
    return isBinary ? loader.LoadBinaryFromFile(model, &error, &warning, path)
                    : loader.LoadASCIIFromFile(model, &error, &warning, path);
}

aiMatrix4x4 matrixOf(const tinygltf::Node &node)
{
    aiMatrix4x4 matrix;
    if (node.matrix.size() == 16) { // by columns
        for (unsigned i = 0; i < 16; ++i)
            matrix[i % 4][i / 4] = float(node.matrix[i]);
        return matrix;
    }
    const auto part = [](const std::vector<double> &from, std::size_t k) {
        return float(from[k]);
    };
    if (node.translation.size() == 3) {
        aiMatrix4x4 moved;
        aiMatrix4x4::Translation(
            {part(node.translation, 0), part(node.translation, 1), part(node.translation, 2)},
            moved);
        matrix = matrix * moved;
    }
    if (node.rotation.size() == 4) {
        const aiQuaternion turned(part(node.rotation, 3), part(node.rotation, 0),
                                  part(node.rotation, 1), part(node.rotation, 2));
        matrix = matrix * aiMatrix4x4(turned.GetMatrix());
    }
    if (node.scale.size() == 3) {
        aiMatrix4x4 scaled;
        aiMatrix4x4::Scaling({part(node.scale, 0), part(node.scale, 1), part(node.scale, 2)},
                             scaled);
        matrix = matrix * scaled;
    }
    return matrix;
}

} // namespace

bool GltfScene::open(const std::string &path, const aiMatrix4x4 &above)
{
    m_file = std::filesystem::path(path).stem().string();
    if (!load(path, &m_model) || !m_model.extensionsRequired.empty() || m_model.defaultScene < 0
        || m_model.defaultScene >= int(m_model.scenes.size()) || !openMeshes())
        return false;
    const std::vector<int> &roots = m_model.scenes[std::size_t(m_model.defaultScene)].nodes;
    return std::all_of(roots.begin(), roots.end(),
                       [&](int root) { return collect(root, above, roots.size() == 1, 0); });
}

bool GltfScene::openMeshes()
{
    for (const tinygltf::Mesh &mesh : m_model.meshes) {
        std::vector<Primitive> &made = m_primitives.emplace_back();
        for (const tinygltf::Primitive &from : mesh.primitives) {
            const int mode = from.mode < 0 ? TINYGLTF_MODE_TRIANGLES : from.mode;
            if (mode < TINYGLTF_MODE_TRIANGLES || mode > TINYGLTF_MODE_TRIANGLE_FAN)
                continue; // points and lines
            Primitive primitive;
            primitive.mode = mode;
            if (!openPrimitive(from, &primitive))
                return false;
            if (primitive.triangles() > 0)
                made.push_back(std::move(primitive));
        }
    }
    return true;
}

bool GltfScene::openPrimitive(const tinygltf::Primitive &from, Primitive *made) const
{
    const auto positions = from.attributes.find("POSITION");
    if (positions == from.attributes.end() || !open(positions->second, &made->positions)
        || made->positions.m_parts != 3 || made->positions.m_type != TINYGLTF_COMPONENT_TYPE_FLOAT)
        return false;
    const std::size_t count = made->positions.count();
    if (!openAttribute(from, "NORMAL", false, count, &made->normals)
        || !openAttribute(from, "COLOR_0", true, count, &made->colors)
        || (made->normals.isThere() && made->normals.m_parts != 3)
        || (made->colors.isThere() && made->colors.m_parts < 3))
        return false;
    for (int set = 0;; ++set) {
        Numbers uvs;
        if (!openAttribute(from, "TEXCOORD_" + std::to_string(set), true, count, &uvs)
            || (uvs.isThere() && uvs.m_parts != 2))
            return false;
        if (!uvs.isThere())
            break;
        made->uvs.push_back(uvs);
    }
    if (from.material >= 0) {
        if (from.material >= int(m_model.materials.size()))
            return false;
        made->material = m_model.materials[std::size_t(from.material)].name;
    }
    if (from.indices < 0)
        return true;
    const bool isWhole = open(from.indices, &made->indices);
    return isWhole && made->indices.m_parts == 1
           && made->indices.m_type != TINYGLTF_COMPONENT_TYPE_FLOAT;
}

bool GltfScene::openAttribute(const tinygltf::Primitive &from, const std::string &name,
                              bool isWholeAllowed, std::size_t count, Numbers *made) const
{
    const auto found = from.attributes.find(name);
    if (found == from.attributes.end())
        return true;
    if (!open(found->second, made) || made->count() != count)
        return false;
    if (made->m_type == TINYGLTF_COMPONENT_TYPE_FLOAT)
        return true;
    return isWholeAllowed && m_model.accessors[std::size_t(found->second)].normalized
           && made->m_type != TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT;
}

bool GltfScene::open(int accessor, Numbers *made) const
{
    if (accessor < 0 || accessor >= int(m_model.accessors.size()))
        return false;
    const tinygltf::Accessor &from = m_model.accessors[std::size_t(accessor)];
    if (from.sparse.isSparse || from.bufferView < 0
        || from.bufferView >= int(m_model.bufferViews.size()) || from.count == 0
        || from.count > MostCount)
        return false;
    const tinygltf::BufferView &view = m_model.bufferViews[std::size_t(from.bufferView)];
    if (view.buffer < 0 || view.buffer >= int(m_model.buffers.size()))
        return false;
    const std::vector<unsigned char> &bytes = m_model.buffers[std::size_t(view.buffer)].data;
    const int type = from.componentType;
    if (type != TINYGLTF_COMPONENT_TYPE_FLOAT && type != TINYGLTF_COMPONENT_TYPE_UNSIGNED_INT
        && type != TINYGLTF_COMPONENT_TYPE_UNSIGNED_SHORT
        && type != TINYGLTF_COMPONENT_TYPE_UNSIGNED_BYTE)
        return false;
    const int parts = tinygltf::GetNumComponentsInType(std::uint32_t(from.type));
    const int stride = from.ByteStride(view);
    if (parts < 1 || parts > 4 || stride < 1)
        return false;
    const std::size_t size = std::size_t(parts)
                             * std::size_t(tinygltf::GetComponentSizeInBytes(std::uint32_t(type)));
    const std::size_t needed = from.byteOffset + (from.count - 1) * std::size_t(stride) + size;
    if (std::size_t(stride) < size || from.byteOffset > bytes.size()
        || view.byteOffset > bytes.size() || view.byteLength > bytes.size() - view.byteOffset
        || needed > view.byteLength)
        return false;
    made->m_data = bytes.data() + view.byteOffset + from.byteOffset;
    made->m_count = from.count;
    made->m_stride = std::size_t(stride);
    made->m_parts = std::size_t(parts);
    made->m_type = type;
    return true;
}

bool GltfScene::collect(int node, const aiMatrix4x4 &above, bool isOnly, int depth)
{
    if (depth > DeepestNode || node < 0 || node >= int(m_model.nodes.size()))
        return false;
    const tinygltf::Node &from = m_model.nodes[std::size_t(node)];
    const aiMatrix4x4 matrix = above * matrixOf(from);
    if (from.mesh >= int(m_primitives.size()))
        return false;
    if (from.mesh >= 0 && !m_primitives[std::size_t(from.mesh)].empty())
        m_placed.push_back({from.mesh, matrix, objectName(node, isOnly)});
    return std::all_of(from.children.begin(), from.children.end(),
                       [&](int child) { return collect(child, matrix, false, depth + 1); });
}

// Unique: two nodes of a name are two objects.
std::string GltfScene::objectName(int node, bool isOnly)
{
    const tinygltf::Node &from = m_model.nodes[std::size_t(node)];
    std::string wanted = from.name.empty() ? "nodes[" + std::to_string(node) + "]" : from.name;
    if (wanted.front() == '<' || wanted == "RootNode" || wanted == "ROOT"
        || (isOnly && from.children.empty()))
        wanted = m_file;
    std::string unique = wanted;
    for (int i = 2; std::find(m_taken.begin(), m_taken.end(), unique) != m_taken.end(); ++i)
        unique = wanted + " " + std::to_string(i);
    m_taken.push_back(unique);
    return unique;
}

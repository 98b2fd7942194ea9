#include "OssRender/Draw/Device.h"

#include <epoxy/egl.h>
#include <epoxy/gl.h>

#include <iterator>

namespace {

/// A display that needs no screen where the driver knows one, else the usual one.
EGLDisplay findDisplay()
{
    const struct
    {
        const char *extension;
        EGLenum platform;
    } ways[] = {{"EGL_MESA_platform_surfaceless", EGL_PLATFORM_SURFACELESS_MESA},
                {"EGL_EXT_platform_device", EGL_PLATFORM_DEVICE_EXT}};

    for (const auto &way : ways) {
        if (!epoxy_has_egl_extension(EGL_NO_DISPLAY, way.extension))
            continue;
        EGLDeviceEXT device = nullptr;
        EGLint count = 0;
        if (way.platform == EGL_PLATFORM_DEVICE_EXT
            && (!eglQueryDevicesEXT(1, &device, &count) || count < 1))
            continue;
        EGLDisplay display = eglGetPlatformDisplayEXT(way.platform, device, nullptr);
        if (display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr))
            return display;
    }
    EGLDisplay display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    return display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr) ? display
                                                                                 : EGL_NO_DISPLAY;
}

} // namespace

std::unique_ptr<Device> Device::make(std::string *problem)
{
    std::unique_ptr<Device> device(new Device);
    if (!device->start(problem))
        device.reset();
    return device;
}

bool Device::start(std::string *problem)
{
    const auto fail = [problem](const char *reason) {
        *problem = reason;
        return false;
    };
    if (!epoxy_has_egl())
        return fail("this machine has no EGL, by which OpenGL is had without a window");
    m_display = findDisplay();
    if (m_display == EGL_NO_DISPLAY)
        return fail("this machine has no OpenGL");
    const EGLenum before = eglQueryAPI();
    const EGLint wanted[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE, 0, EGL_NONE};
    const EGLint version[] = {EGL_CONTEXT_MAJOR_VERSION,
                              3,
                              EGL_CONTEXT_MINOR_VERSION,
                              3,
                              EGL_CONTEXT_OPENGL_PROFILE_MASK,
                              EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                              EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglBindAPI(EGL_OPENGL_API) && eglChooseConfig(m_display, wanted, &config, 1, &count)
        && count > 0)
        m_context = eglCreateContext(m_display, config, EGL_NO_CONTEXT, version);
    eglBindAPI(before);
    if (!m_context)
        return fail("this machine's OpenGL is older than 3.3");
    if (!Use(*this).ok())
        return fail("OpenGL does not draw without a window here");
    return true;
}

Device::~Device()
{
    // The display stays: another device may have it, too.
    if (m_context)
        eglDestroyContext(m_display, m_context);
}

Device::Use::Use(const Device &device)
    : m_display(device.m_display)
    , m_before{eglGetCurrentDisplay(), eglGetCurrentSurface(EGL_DRAW),
               eglGetCurrentSurface(EGL_READ), eglGetCurrentContext()}
    , m_ok(eglBindAPI(EGL_OPENGL_API)
           && eglMakeCurrent(device.m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, device.m_context))
{
}

Device::Use::~Use()
{
    if (m_before[0] != EGL_NO_DISPLAY)
        eglMakeCurrent(m_before[0], m_before[1], m_before[2], m_before[3]);
    else
        eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

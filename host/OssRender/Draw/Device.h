#pragma once

#include <memory>
#include <string>

/// An OpenGL context without a window, of the thread that has made it current.
class Device
{
public:
    /// Null when there is none to be had; `problem` says why, in words.
    static std::unique_ptr<Device> make(std::string *problem);
    Device(const Device &) = delete;
    Device &operator=(const Device &) = delete;
    ~Device();

    /// While it lives the device is current on this thread; before that whatever was.
    class Use
    {
    public:
        explicit Use(const Device &device);
        Use(const Use &) = delete;
        Use &operator=(const Use &) = delete;
        ~Use();

        bool ok() const { return m_ok; }

    private:
        void *m_display;
        void *m_before[4]; ///< display, drawing, reading, context
        bool m_ok;
    };

private:
    Device() = default;

    bool start(std::string *problem);

    void *m_display = nullptr;
    void *m_context = nullptr;
};

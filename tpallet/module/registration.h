#pragma once

#include <functional>
#include <utility>

namespace tpallet {

// A load-time registration with the host that is undone when the library unloads, so that no
// registry keeps a function of an unloaded library.
class Registration
{
public:
    Registration(const std::function<void()> &doIt, std::function<void()> undo)
        : m_undo(std::move(undo))
    {
        doIt();
    }
    ~Registration()
    {
        if (m_undo)
            m_undo();
    }
    Registration(const Registration &) = delete;
    Registration &operator=(const Registration &) = delete;

private:
    std::function<void()> m_undo;
};

} // namespace tpallet

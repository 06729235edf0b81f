#pragma once

#include "input/context/IInputContext.h"

#include <boost/signals2/connection.hpp>
#include <boost/smart_ptr/shared_ptr.hpp>

#include <list>
#include <map>
#include <string>

namespace orbelantine {

/// Several surfaces as one: it raises the events of all, and asks the main one. Its signals fire
/// on the threads of the surfaces. The operations that it adds are for the host's thread. Without a
/// main context it answers with zeros, false and the default speed.
class InputContextComposite final : public IInputContext {
  public:
    /// Takes the place of the present main context, whose events are no longer raised.
    void setMainInputContext(const boost::shared_ptr<IInputContext>& context);
    /// The context of an id in use stays connected beside the new one unless removed first. The
    /// empty id is the main context's.
    void addSecondaryContext(const std::string& id,
                             const boost::shared_ptr<IInputContext>& context);
    void removeSecondaryContext(const std::string& id);

    [[nodiscard]] std::uint16_t convertVKCodeToUnicode(std::uint32_t vk) override;
    [[nodiscard]] std::uint32_t mapVK(std::uint32_t index) override;
    [[nodiscard]] std::uint32_t mapScan(std::uint32_t index) override;
    void lockSystemMouse() override;
    void unlockSystemMouse(std::int32_t x = -1, std::int32_t y = -1) override;
    [[nodiscard]] std::int32_t getSystemMouseSpeed() override;
    bool screenToInputSurface(Point& point) override;
    bool inputSurfaceToScreen(Point& point) override;
    bool getInputSurfaceRectWithinScreen(Rect& rect) override;
    void setCaptureMouseExclusively() override;
    void releaseCaptureMouseExclusively() override;

  private:
    void registerEvents(const std::string& id, IInputContext* context);
    void unregisterEvents(const std::string& id);

    boost::shared_ptr<IInputContext> mMainContext;
    std::map<std::string, boost::shared_ptr<IInputContext>> mSecondaries;
    std::map<std::string, std::list<boost::signals2::scoped_connection>> mConnections;
};

} // namespace orbelantine

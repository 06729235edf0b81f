// A window of the host as a surface.

// The window is taken once its context has an owner; one that can't be is the host's exception.
%typemap(out, canthrow=1) orbelantine::WindowsHwndInputContext *
%{ $result = nullptr;
  {
    boost::shared_ptr< orbelantine::WindowsHwndInputContext > owner($1);
    try {
      owner->attach();
      $result = new boost::shared_ptr< orbelantine::WindowsHwndInputContext >(owner);
    } catch (const std::exception &e) {
      SWIG_CSharpSetPendingException(SWIG_CSharpInvalidOperationException, e.what());
    }
  } %}

namespace orbelantine {

class WindowsHwndInputContext : public orbelantine::IInputContext {
public:
  WindowsHwndInputContext(bool useRawInput, void *window, bool mapImeKeys);
  virtual ~WindowsHwndInputContext();
  uint16_t convertVKCodeToUnicode(uint32_t vk);
  uint32_t mapVK(uint32_t index);
  uint32_t mapScan(uint32_t index);
  void lockSystemMouse();
  void unlockSystemMouse(int32_t x = -1, int32_t y = -1);
  int32_t getSystemMouseSpeed();
  bool screenToInputSurface(orbelantine::IInputContext::Point &point);
  bool inputSurfaceToScreen(orbelantine::IInputContext::Point &point);
  bool getInputSurfaceRectWithinScreen(orbelantine::IInputContext::Rect &rect);
  void setCaptureMouseExclusively();
  void releaseCaptureMouseExclusively();
  int32_t pauseKeyInjection();
  void resumeKeyInjection(int32_t id);
  %immutable;
  boost::signals2::signal< bool (uint32_t,uint32_t,int32_t) > onPreKeyDown;
  boost::signals2::signal< bool (uint32_t,uint32_t) > onPreKeyUp;
  %mutable;
};

}

%typemap(out) orbelantine::WindowsHwndInputContext *;

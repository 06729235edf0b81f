// Input surfaces, and the callback families of their events.

%feature("director") orbelantine::IInputContext;
%feature("director") orbelantine::IWindowState;
%feature("director") orbelantine::IRemoteMouseInfoProvider;

namespace orbelantine {

class IInputContext {
public:
  enum eMouseButton { MouseButtonLeft = 0, MouseButtonRight = 1 };
  enum ePointerType { PointerPen = 0, PointerTouch = 1, PointerOther = 2 };
  struct Point {
    int32_t x;
    int32_t y;
  };
  struct Rect {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
  };
  static const int32_t DEFAULT_MOUSE_SPEED;
  virtual ~IInputContext();
  virtual uint16_t convertVKCodeToUnicode(uint32_t vk) = 0;
  virtual uint32_t mapVK(uint32_t index) = 0;
  virtual uint32_t mapScan(uint32_t index) = 0;
  virtual void lockSystemMouse() = 0;
  virtual void unlockSystemMouse(int32_t x = -1, int32_t y = -1) = 0;
  virtual int32_t getSystemMouseSpeed() = 0;
  virtual bool screenToInputSurface(orbelantine::IInputContext::Point &point) = 0;
  virtual bool inputSurfaceToScreen(orbelantine::IInputContext::Point &point) = 0;
  virtual bool getInputSurfaceRectWithinScreen(orbelantine::IInputContext::Rect &rect) = 0;
  virtual void setCaptureMouseExclusively() = 0;
  virtual void releaseCaptureMouseExclusively() = 0;
  %immutable;
  boost::signals2::signal< void (uint32_t,uint32_t,int32_t) > onKeyDown;
  boost::signals2::signal< void (uint32_t,uint32_t) > onKeyUp;
  boost::signals2::signal< void (orbelantine::IInputContext::eMouseButton,int32_t,int32_t) > onMouseClickDown;
  boost::signals2::signal< void (orbelantine::IInputContext::eMouseButton,int32_t,int32_t) > onMouseClickUp;
  boost::signals2::signal< void (int,int) > onAbsoluteMouseMove;
  boost::signals2::signal< void (int32_t,int32_t,int32_t) > onRelativeMouseWheel;
  boost::signals2::signal< void (int,int) > onRelativeMouseMove;
  boost::signals2::signal< void (orbelantine::IInputContext::ePointerType,uint32_t,int32_t,int32_t,bool) > onPointerDown;
  boost::signals2::signal< void (orbelantine::IInputContext::ePointerType,uint32_t,int32_t,int32_t,bool) > onPointerUp;
  boost::signals2::signal< void (orbelantine::IInputContext::ePointerType,uint32_t,int32_t,int32_t,bool) > onPointerUpdate;
  boost::signals2::signal< void () > onInputSurfaceLostFocus;
  boost::signals2::signal< void () > onInputSurfaceDestroyed;
  boost::signals2::signal< void (int,int,double,int) > onLogicalDimensionsChanged;
  boost::signals2::signal< void (int) > onRotationChanged;
  boost::signals2::signal< void (wstring_director) > onTextComposed;
  %mutable;
};

// The proxy knows its contexts: it refuses itself, and questions that nobody can answer.
%define ORB_COMPOSITE_PUT(ID)
%typemap(csin,
         pre="    swigContexts.Put(" #ID ", $csinput);\n    global::Orbelantine.Swig.Loan loan$csinput = global::Orbelantine.Swig.Loan.Of($csinput, IInputContext.getCPtr($csinput));",
         post="      loan$csinput.End();") boost::shared_ptr< orbelantine::IInputContext > const &context "loan$csinput.Handle"
%enddef
%typemap(cscode) orbelantine::InputContextComposite %{
  internal readonly global::Orbelantine.Swig.CompositeContexts swigContexts = new global::Orbelantine.Swig.CompositeContexts();
%}

class InputContextComposite : public orbelantine::IInputContext {
public:
  InputContextComposite();
  ORB_COMPOSITE_PUT(null)
  void setMainInputContext(boost::shared_ptr< orbelantine::IInputContext > const &context);
  ORB_COMPOSITE_PUT(id)
  void addSecondaryContext(const std::string &id, boost::shared_ptr< orbelantine::IInputContext > const &context);
  %clear boost::shared_ptr< orbelantine::IInputContext > const &context;
  %typemap(csin, pre="    swigContexts.Remove($csinput);") const std::string &id "$csinput"
  void removeSecondaryContext(const std::string &id);
  %clear const std::string &id;
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
};

class IWindowState {
public:
  virtual ~IWindowState();
  virtual bool getHovered() = 0;
  virtual bool getFocued() = 0;
};

class IRemoteMouseInfoProvider {
public:
  virtual ~IRemoteMouseInfoProvider();
  virtual void start(boost::function< void (boost::system::error_code) > completion) = 0;
  virtual void stop(boost::function< void (boost::system::error_code) > completion) = 0;
  %immutable;
  boost::signals2::signal< void (int,int) > onCursorMove;
  boost::signals2::signal< void (int,int) > onCursorViewPortChanged;
  boost::signals2::signal< void (int,int,double,int) > onLogicalDimensionsChanged;
  %mutable;
};

}

%include "binding/callbacks/CallbackTableInput.inc"

// Input event buffers with their raw layouts, the two ends of an input chain, and the format.

%feature("director") orbelantine::IInputSource;
%feature("director") orbelantine::IInputTarget;

// What all input buffers override.
%define ORB_INPUT_BUFFER_MEMBERS
  boost::shared_ptr< orbelantine::IMediaBuffer > copy(uint8_t type = 255, uint64_t timestamp = 0);
  boost::shared_ptr< orbelantine::IMediaBuffer > soft_copy(uint8_t type = 255, uint64_t timestamp = 0);
  void *map(uint32_t plane);
  uint8_t getType();
  uint32_t getSize();
  uint64_t getTimestamp();
  void setTimestamp(uint64_t timestamp);
  void *getRawBuffer();
%enddef

namespace orbelantine {

class IInputMediaBufferMouse : public orbelantine::IMediaBuffer {
public:
  struct EventData {
    int32_t x;
    int32_t y;
    uint8_t type;
    int32_t maxX;
    int32_t maxY;
  };
  IInputMediaBufferMouse(int32_t x, int32_t y, uint8_t type, bool convert = true, uint64_t timestamp = 0, int32_t maxX = 0, int32_t maxY = 0);
  ORB_INPUT_BUFFER_MEMBERS
};

class IInputMediaBufferKeyboard : public orbelantine::IMediaBuffer {
public:
  struct EventData {
    uint8_t ch;
    uint8_t type;
    uint32_t extra;
  };
  IInputMediaBufferKeyboard(uint8_t ch, uint8_t type, uint32_t extra, bool convert = true);
  ORB_INPUT_BUFFER_MEMBERS
};

class IInputMediaBufferTouch : public orbelantine::IMediaBuffer {
public:
  struct EventData {
    uint8_t id;
    int32_t x;
    int32_t y;
    uint8_t type;
  };
  IInputMediaBufferTouch(uint8_t id, int32_t x, int32_t y, uint8_t type, bool convert = true, uint64_t timestamp = 0);
  ORB_INPUT_BUFFER_MEMBERS
};

class IInputSource : public orbelantine::IMediaElement {
public:
  virtual ~IInputSource();
};

class IInputTarget : public orbelantine::IMediaElement {
public:
  virtual ~IInputTarget();
};

class InputFormat {
public:
  enum DeviceType;
  InputFormat();
  InputFormat(uint32_t mouseType, uint32_t keyboardType, uint32_t touchType, uint32_t typeFlags);
  InputFormat(uint32_t mouseType, uint32_t keyboardType, uint32_t touchType);
  InputFormat(uint32_t mouseType, uint32_t keyboardType);
  InputFormat(uint32_t mouseType);
  InputFormat(orbelantine::KVStore const &store);
  orbelantine::KVStore getAsKVStore();
  uint32_t mouseType;
  uint32_t keyboardType;
  uint32_t touchType;
  uint32_t typeFlags;
};

}

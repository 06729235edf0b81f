%module(directors="1") AVStackBase
%include "binding/overlay/overlay.i"
%import "binding/Common.i"

%{
#include "avstack/IMediaBuffer.h"
#include "avstack/IMediaElement.h"
#include "binding/callbacks/CallbackFamilies.h"
%}

%include "binding/media.i"

%feature("director") orbelantine::IMediaBuffer;
%feature("director") orbelantine::IMediaElement;

namespace orbelantine {

class IMediaBuffer {
public:
  virtual ~IMediaBuffer();
  virtual boost::shared_ptr< orbelantine::IMediaBuffer > copy(uint8_t type = 255, uint64_t timestamp = 0);
  virtual boost::shared_ptr< orbelantine::IMediaBuffer > soft_copy(uint8_t type = 255, uint64_t timestamp = 0);
  virtual void *map();
  virtual void *map(uint32_t plane);
  virtual void unmap();
  virtual uint8_t getType();
  virtual uint32_t getWidth();
  virtual uint32_t getHeight();
  virtual uint32_t getStride(uint32_t plane = 0);
  virtual uint32_t getSize();
  virtual uint64_t getTimestamp();
  virtual void setTimestamp(uint64_t timestamp);
  virtual void *getRawBuffer();
  virtual boost::shared_ptr< void > getRawMediaContext();
  static uint64_t getNowTimestamp();
};

class IMediaElement {
public:
  virtual ~IMediaElement();
  virtual void start();
  virtual void start(boost::function< void (boost::system::error_code) > callback);
  virtual void stop();
  virtual void pause();
  virtual void resume();
  virtual void registerTarget(boost::shared_ptr< orbelantine::IMediaElement > const &target);
  virtual void onFrame(boost::shared_ptr< orbelantine::IMediaBuffer > const &buffer);
  virtual void refresh();
  virtual void flush();
  virtual std::string getName();
};

}

%include "binding/avconfiguration.i"

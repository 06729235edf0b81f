#pragma once

namespace orbelantine {

/// Takes note of how long named spans of work last. Any thread may call.
class IPerfManager {
  public:
    class Dummy;

    virtual ~IPerfManager() = default;
    /// Spans of different names may overlap. `span` must outlive it.
    virtual void begin(const char* span) = 0;
    virtual void end(const char* span) = 0;
};

/// Takes no note.
class IPerfManager::Dummy final : public IPerfManager {
  public:
    void begin(const char* span) override;
    void end(const char* span) override;
};

} // namespace orbelantine

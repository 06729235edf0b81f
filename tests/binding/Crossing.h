#pragma once

#include "tests/binding/Library.h"

#include <cstdint>
#include <string>

namespace orbelantine::test {

/// How a value of type T goes through the exports: `In` is what is given, and releases what was
/// made for it; `Out` is what comes back, turned into a value by `take`.
template <class T>
struct Crossing {
    class In {
      public:
        explicit In(T value)
            : mValue(value) {}

        [[nodiscard]] T raw() const { return mValue; }

      private:
        T mValue;
    };

    using Raw = T;
    using Out = T;

    static T take(Out out) { return out; }
};

template <>
struct Crossing<std::string> {
    class In {
      public:
        explicit In(std::string text)
            : mText(std::move(text)) {}

        [[nodiscard]] const char* raw() const { return mText.empty() ? nullptr : mText.c_str(); }

      private:
        std::string mText;
    };

    using Raw = const char*;
    using Out = void*;

    static std::string take(Out out) { return Library::instance().takeText(out); }
};

template <>
struct Crossing<std::u16string> {
    class In {
      public:
        explicit In(std::u16string text)
            : mText(std::move(text)) {}

        [[nodiscard]] const char16_t* raw() const {
            return mText.empty() ? nullptr : mText.c_str();
        }

      private:
        std::u16string mText;
    };

    using Raw = const char16_t*;
    using Out = void*;

    static std::u16string take(Out out) { return Library::instance().takeWideText(out); }
};

/// A store that holds one number.
struct Store {
    int number = 0;
    bool operator==(const Store&) const = default;
};

template <>
struct Crossing<Store> {
    class In {
      public:
        explicit In(Store store);
        ~In();
        In(const In&) = delete;
        In& operator=(const In&) = delete;

        [[nodiscard]] void* raw() const { return mHandle; }

      private:
        void* mHandle;
    };

    using Raw = void*;
    using Out = void*;
    static Store take(Out out);
};

/// A shared media buffer that begins with one number.
struct Buffer {
    int number = 0;
    bool operator==(const Buffer&) const = default;
};

template <>
struct Crossing<Buffer> {
    class In {
      public:
        explicit In(Buffer buffer);
        ~In();
        In(const In&) = delete;
        In& operator=(const In&) = delete;

        [[nodiscard]] void* raw() const { return mHandle; }

      private:
        void* mHandle;
    };

    using Raw = void*;
    using Out = void*;
    /// Takes the holder too.
    static Buffer take(Out out);
};

} // namespace orbelantine::test

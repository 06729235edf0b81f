// A StreamPipe against a flat buffer: the bytes of the input are operations and their arguments.

#include "core/common/types/StreamPipe.h"
#include "tests/fuzz/Input.h"

#include <iterator>
#include <vector>

namespace orbelantine::fuzz {

namespace {

using Bytes = std::vector<std::uint8_t>;

class Comparison {
  public:
    explicit Comparison(Input input)
        : mInput(input) {}

    void run() {
        static constexpr void (Comparison::*kOperations[])() = {
            &Comparison::write,  &Comparison::read, &Comparison::peek,
            &Comparison::remove, &Comparison::find, &Comparison::clear,
        };
        while (!mInput.empty()) {
            (this->*kOperations[mInput.byte() % std::size(kOperations)])();
            ORB_FUZZ_EXPECT(mPipe.size() == mFlat.size());
        }
    }

  private:
    void write() {
        const auto bytes = mInput.bytes(mInput.byte());
        mPipe.write(bytes.data(), bytes.size());
        mFlat.insert(mFlat.end(), bytes.begin(), bytes.end());
        ORB_FUZZ_EXPECT(mPipe.event().wait(0));
    }

    void read() {
        Bytes buffer(mInput.byte());
        const std::size_t expected = std::min(buffer.size(), mFlat.size());
        ORB_FUZZ_EXPECT(mPipe.read(buffer.data(), buffer.size()) == (expected == buffer.size()));
        ORB_FUZZ_EXPECT(std::equal(buffer.begin(), at(buffer, expected), mFlat.begin()));
        drop(expected);
    }

    void peek() {
        Bytes buffer(mInput.byte());
        const std::size_t offset = position();
        const bool succeeds =
            !buffer.empty() && offset <= mFlat.size() && buffer.size() <= mFlat.size() - offset;
        ORB_FUZZ_EXPECT(mPipe.peek(buffer.data(), buffer.size(), offset) == succeeds);
        if (succeeds)
            ORB_FUZZ_EXPECT(std::equal(buffer.begin(), buffer.end(), at(mFlat, offset)));
    }

    void remove() {
        const std::size_t size = mInput.byte();
        const bool succeeds = size > 0 && size <= mFlat.size();
        ORB_FUZZ_EXPECT(mPipe.remove(size) == succeeds);
        if (succeeds)
            drop(size);
    }

    void find() {
        const auto pattern = mInput.bytes(mInput.byte() % 4);
        const std::size_t start = position();
        std::ptrdiff_t expected = -1;
        if (!pattern.empty() && start < mFlat.size()) {
            const auto match =
                std::search(at(mFlat, start), mFlat.end(), pattern.begin(), pattern.end());
            expected = match == mFlat.end() ? -1 : match - mFlat.begin();
        }
        ORB_FUZZ_EXPECT(mPipe.find(pattern.data(), pattern.size(), start) == expected);
    }

    void clear() {
        mPipe.clear();
        mFlat.clear();
    }

    /// Mostly near the data; 255 is beyond any.
    std::size_t position() {
        const std::uint8_t byte = mInput.byte();
        return byte == 255 ? SIZE_MAX : byte;
    }

    static Bytes::iterator at(Bytes& bytes, std::size_t position) {
        return bytes.begin() + static_cast<std::ptrdiff_t>(position);
    }

    void drop(std::size_t size) { mFlat.erase(mFlat.begin(), at(mFlat, size)); }

    Input mInput;
    StreamPipe mPipe;
    Bytes mFlat;
};

} // namespace

} // namespace orbelantine::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    orbelantine::fuzz::Comparison({data, size}).run();
    return 0;
}

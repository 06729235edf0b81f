#include "core/common/OSAL.h"

#include "core/common/config/INetworkOptimizer.h"
#include "core/common/config/NullObjects.h"
#include "core/common/config/PipelineNames.h"

#include <boost/exception/get_error_info.hpp>
#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace orbelantine {
namespace {

// A profile row names this implementation, and nothing in the library registers it.
struct Vehicle {
    virtual ~Vehicle() = default;
    std::string text;
};

struct Bicycle final : Vehicle {
    Bicycle(const KVStore& store, int wheels) {
        text = KVStore(store).getStringAt("name") + " with " + std::to_string(wheels);
    }
};

struct Sledge final : Vehicle {
    explicit Sledge(int wheels) { text = std::to_string(wheels); }
};

ORB_OSAL_REGISTER(Vehicle, Bicycle, "Bicycle", int);
ORB_OSAL_REGISTER(Vehicle, Sledge, "IVideoRenderer::Dummy", int);
ORB_OSAL_REGISTER(Vehicle, Sledge, "SerializableVideoSocketSource", int);

TEST(OSALFactory, LookupGoesFromTheHintToTheProfilesInTheirOrder) {
    const struct {
        const char* interfaceName;
        const char* hint;
        std::uint32_t index;
        const char* implementation;
    } cases[] = {
        {"IMouseSource", "", 0, "RelativeMouseSource"},
        {"IMouseSource", "input_pipeline:hid", 0, "RelativeMouseSource"},
        {"IFoo", "", 0, ""},
        {"IMouseReverser", "", 0, ""},
        // A hint that names a profile puts it first; the index goes on from it to the next match.
        {"IMouseSource", "absolute_mouse", 0, "AbsoluteMouseSource"},
        {"IMouseSource", "absolute_mouse", 1, "RelativeMouseSource"},
        {"IMouseSource", "absolute_mouse", 2, ""},
        {"IVideoSource", "dx1", 0, "IddVideoSource"},
        {"IVideoSource", "dx1", 1, "WindowsVideoSource"},
        // The legacy profile keeps what it does not replace.
        {"ISocketMediaSource", "generic_tcp_legacy", 0, "SerializableVideoSocketSourceLegacy"},
        {"IDepacketizer", "generic_tcp_legacy", 0, "SerializableToDepacketized"},
        // One that names an implementation wins; one that names an interface is looked up itself.
        {"IMouseSource", "Bicycle", 0, "Bicycle"},
        {"IFoo", "IPerfManager", 0, "IPerfManager::Dummy"},
        {"Bicycle", "", 0, "Bicycle"},
    };

    const OSALFactory factory;
    for (const auto& [interfaceName, hint, index, implementation] : cases)
        EXPECT_EQ(factory.lookupFactoryName(interfaceName, hint, index), implementation)
            << interfaceName << " " << hint << " " << index;
    OSALFactory changed;
    for (const auto& [profile, implementation] :
         {std::pair{"ios", "IMouseReverser::Dummy"}, {"android", "AndroidMouseReverser"}}) {
        changed.profiles().push_front(profile);
        EXPECT_EQ(changed.lookupFactoryName("IMouseReverser", "", 0), implementation);
    }
}

TEST(OSALFactory, RetrievalPassesOverMatchesWithoutACreatorDownToTheDummy) {
    OSALFactory factory;
    EXPECT_EQ(factory.retrieveFactory("IVideoRenderer", "WindowsVideoRenderer"),
              factory.retrieveFactory("IVideoRenderer::Dummy", ""));
    factory.profiles() = {"generic_tcp_legacy", "generic_tcp"};
    EXPECT_EQ(factory.retrieveFactory("ISocketMediaSource", ""),
              factory.retrieveFactory("", "SerializableVideoSocketSource"));
}

TEST(OSALFactory, NothingAtAllThrowsWithTheDummysNameAndThePlace) {
    const OSALFactory factory;
    try {
        (void)factory.retrieveFactory("IFoo", "");
        FAIL() << "A factory was found";
    } catch (const Exception& exception) {
        EXPECT_STREQ(exception.what(), "Could not find factory for IFoo::Dummy");
        const char* const* file = boost::get_error_info<boost::throw_file>(exception);
        const char* const* function = boost::get_error_info<boost::throw_function>(exception);
        ASSERT_TRUE(file != nullptr && function != nullptr);
        EXPECT_TRUE(std::string(*file).ends_with("OSAL.cpp"));
        EXPECT_NE(std::string(*function).find("retrieveFactory"), std::string::npos);
    }
}

TEST(OsalCreate, PassesTheStoreAndTheArgumentsToAnImplementationOfTheInterface) {
    KVStore store;
    store.setStringAt("name", "Racer");
    OSALFactory factory;
    EXPECT_EQ((osalCreate<Vehicle, int>(factory, "Vehicle", store, "Bicycle", 2))->text,
              "Racer with 2");
    EXPECT_EQ((osalCreate<Vehicle, int>(factory, "IVideoRenderer", store, "", 4))->text, "4");
    EXPECT_THROW((void)osalCreate<Vehicle>(factory, "Vehicle", store, "IPerfManager::Dummy"),
                 Exception);
    EXPECT_THROW((void)osalCreate<Vehicle>(factory, "Vehicle", store, "Bicycle"), Exception);
}

TEST(OsalCreate, NullObjectsOfTheLibraryAreRegistered) {
    OSALFactory& factory = OSALFactory::instance();
    EXPECT_NE(osalCreate<IPerfManager>(factory, "IPerfManager", KVStore(), ""), nullptr);
    EXPECT_NE(osalCreate<INetworkOptimizer>(factory, "INetworkOptimizer", KVStore(),
                                            "INetworkOptimizer::Dummy"),
              nullptr);
    for (const char* name : {"IAudioPlayer", "IOsapiAcceptor", "IOsapiSocket"})
        EXPECT_NE(factory.retrieveFactory(name, ""), nullptr) << name;
}

TEST(PipelineNames, KindsMapToProfiles) {
    EXPECT_EQ(pipelineProfile(1), "input_pipeline:hid");
    EXPECT_EQ(pipelineProfile(2), "input_pipeline:generic");
    for (const int kind : {-1, 0, 3})
        EXPECT_EQ(pipelineProfile(kind), "") << kind;
}

} // namespace
} // namespace orbelantine

using System;
using System.Linq;
using System.Reflection;
using Orbelantine.Swig.avstack_base;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class CoreTypeTests
    {
        [Test]
        public void AnAddressComesFromTextOrNumberAndGivesBoth()
        {
            foreach (var address in new[] { new CMacAddress("a1-b2-c3-d4-e5-f6"), new CMacAddress(0xA1B2C3D4E5F6) })
                using (address)
                using (var copy = new CMacAddress(address))
                {
                    Assert.Equal("A1:B2:C3:D4:E5:F6", copy.getStdStringAddress());
                    Assert.Equal(0xA1B2C3D4E5F6ul, copy.getUllAddress());
                    Assert.True(!copy.isEmpty(), "empty");
                }
        }

        [Test]
        public void AnAddressOfNothingIsEmptyAndThatOfZeroIsNot()
        {
            foreach (var address in new[] { new CMacAddress(), new CMacAddress((string)null), new CMacAddress("GG:00") })
                Assert.True(address.isEmpty() && address.getStdStringAddress() == "", address.getStdStringAddress());
            Assert.Equal("00:00:00:00:00:00", new CMacAddress(0ul).getStdStringAddress());
            Assert.NullArgument("orbelantine::CMacAddress const & type is null", () => new CMacAddress((CMacAddress)null));
        }

        [Test]
        public void FocusAssistFailsWithoutTheSystemCall()
        {
            Assert.Equal(-1, Common.getFocusAssistProfile());
        }

        [Test]
        public void AConfigurationCarriesItsPipelineTypes()
        {
            using (var none = new AVConfiguration())
            using (var audio = new AVConfiguration(AudioPipelineType.Karaoke))
            using (var both = new AVConfiguration(AudioPipelineType.MicInject, InputPipelineType.Generic))
            {
                Assert.Sequence(new[] { 0, 0, 4, 0, 2, 2 }, new[] { none, audio, both }.SelectMany(
                    each => new[] { (int)each.audioPipelineType, (int)each.inputPipelineType }));
                none.inputPipelineType = InputPipelineType.Hid;
                Assert.Equal("input_pipeline:hid", AVConfiguration.PipelineTypeToString(none.inputPipelineType));
                Assert.Equal("audio_pipeline:karaoke", AVConfiguration.PipelineTypeToString(audio.audioPipelineType));
                Assert.Equal("", AVConfiguration.PipelineTypeToString((AudioPipelineType)5));
                Assert.Equal("audio_pipeline:input_pipeline:", AVStackBase.AUDIO_PIPELINE_PREFIX + AVStackBase.INPUT_PIPELINE_PREFIX);
            }
        }

        [Test]
        public void EachKeyIsATextOfItsOwnThatTheHostMayReplace()
        {
            PropertyInfo[] keys = typeof(AVConfiguration).GetProperties(BindingFlags.Static | BindingFlags.Public);
            string[] before = keys.Select(key => (string)key.GetValue(null, null)).ToArray();
            Assert.Equal(69, keys.Length, "keys");
            Assert.Equal(69, before.Distinct().Count(), "texts");
            foreach (PropertyInfo key in keys)
                key.SetValue(null, "my " + key.Name, null);
            Assert.Sequence(keys.Select(key => "my " + key.Name), keys.Select(key => (string)key.GetValue(null, null)));
            for (int i = 0; i < keys.Length; ++i)
                keys[i].SetValue(null, before[i], null);
            Assert.Equal("", AVConfiguration.VIDEO_PIPELINE_TYPE_DEFAULT);
            Assert.Equal("audioSystemNativeOutputSamplingRate", AVConfiguration.AUDIO_SYSTEM_NATIVE_OUTPUT_SAMPLIG_RATE);
        }

        [Test]
        public void AListOfPipelinesComesAndGoes()
        {
            using (new MediaPipelineImplList()) { }
            Raw.Call("avstack_base", "delete_MediaPipelineImplList", IntPtr.Zero);
        }
    }
}

using System.Linq;
using System.Reflection;
using Orbelantine.Swig.avstack_base;

namespace Orbelantine.HostTests
{
    public sealed class CoreTypeTests
    {
        public void AConfigurationCarriesItsPipelineTypes()
        {
            using (var configuration = new AVConfiguration(AudioPipelineType.MicInject, InputPipelineType.Generic))
            {
                configuration.inputPipelineType = InputPipelineType.Hid;
                Assert.Equal(AVStackBase.AUDIO_PIPELINE_PREFIX + "mic_inject", AVConfiguration.PipelineTypeToString(configuration.audioPipelineType));
                Assert.Equal(AVStackBase.INPUT_PIPELINE_PREFIX + "hid", AVConfiguration.PipelineTypeToString(configuration.inputPipelineType));
            }
        }

        public void EachKeyIsATextOfItsOwnThatTheHostMayReplace()
        {
            PropertyInfo[] keys = typeof(AVConfiguration).GetProperties(BindingFlags.Static | BindingFlags.Public);
            string[] before = keys.Select(key => (string)key.GetValue(null, null)).ToArray();
            Assert.Equal(69, before.Distinct().Count(), "texts");
            foreach (PropertyInfo key in keys)
                key.SetValue(null, "my " + key.Name, null);
            Assert.Sequence(keys.Select(key => "my " + key.Name), keys.Select(key => (string)key.GetValue(null, null)));
            for (int i = 0; i < keys.Length; ++i)
                keys[i].SetValue(null, before[i], null);
        }
    }
}

using System;
using System.Collections.Generic;
using System.Linq;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    /// <summary>A callback that notes what it is told. Any thread may call it.</summary>
    public class Recorder : ErrorCodeCallbackImpl
    {
        private readonly Action<error_code> action;
        private readonly List<error_code> codes = new List<error_code>();

        public Recorder(Action<error_code> action = null) => this.action = action;

        public int Pins { get; private set; }
        public int Unpins { get; private set; }

        public error_code[] Codes
        {
            get
            {
                lock (codes)
                    return codes.ToArray();
            }
        }

        public IEnumerable<int> Values => Codes.Select(code => code.value());

        public connection ConnectTo(SignalErrorCodeCallback signal)
        {
            using (var function = new ErrorCodeCallback(this))
                return signal.connect(function);
        }

        public override void pin() => ++Pins;

        public override bool unpin()
        {
            ++Unpins;
            return false;
        }

        public override void call(error_code code)
        {
            lock (codes)
                codes.Add(code);
            action?.Invoke(code);
        }
    }
}

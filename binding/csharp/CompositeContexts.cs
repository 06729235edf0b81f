using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using Orbelantine.Swig.input;

namespace Orbelantine.Swig
{
    /// <summary>What a composite is made of, to refuse what native code could not answer.</summary>
    internal sealed class CompositeContexts
    {
        private const string MainId = "";

        private readonly Dictionary<string, IInputContext> contexts = new Dictionary<string, IInputContext>();

        /// <summary>null is the main context's id.</summary>
        public void Put(string id, IInputContext context)
        {
            lock (contexts)
            {
                var other = context as InputContextComposite;
                if (other != null && other.swigContexts.Contains(this))
                    throw new ArgumentException("A composite can't be put into itself, nor into one that it contains.", "context");
                contexts[id ?? MainId] = context;
            }
        }

        public void Remove(string id)
        {
            lock (contexts)
                contexts.Remove(id ?? MainId);
        }

        /// <summary>Questions go to the main context. The handle is the composite's, which it has unless it
        /// is disposed.</summary>
        public void RequireMain(HandleRef handle)
        {
            IInputContext main;
            lock (contexts)
                contexts.TryGetValue(MainId, out main);
            if (main == null)
                throw new InvalidOperationException("The composite has no main context to ask; call setMainInputContext first.");
        }

        private bool Contains(CompositeContexts wanted)
        {
            if (this == wanted)
                return true;
            foreach (IInputContext context in contexts.Values)
                if (context is InputContextComposite && ((InputContextComposite)context).swigContexts.Contains(wanted))
                    return true;
            return false;
        }
    }
}

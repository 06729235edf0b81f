using System;
using System.Collections.Generic;
using System.Linq;

namespace Orbelantine.HostTests
{
    /// <summary>What a test found other than it should be; the message is the reason.</summary>
    public sealed class AssertionException : Exception
    {
        public AssertionException(string message) : base(message) { }
    }

    /// <summary>Ends a test that this machine can't run, visibly.</summary>
    public sealed class SkippedException : Exception
    {
        public SkippedException(string reason) : base(reason) { }
    }

    public static class Assert
    {
        public static void Equal<T>(T expected, T actual, string what = null)
        {
            if (!EqualityComparer<T>.Default.Equals(expected, actual))
                Fail(what, "expected " + Show(expected) + ", got " + Show(actual));
        }

        /// <summary>The same elements in the same order.</summary>
        public static void Sequence<T>(IEnumerable<T> expected, IEnumerable<T> actual, string what = null)
        {
            if (!expected.SequenceEqual(actual))
                Fail(what, "expected [" + ShowAll(expected) + "], got [" + ShowAll(actual) + "]");
        }

        public static void True(bool condition, string what)
        {
            if (!condition)
                Fail(null, what);
        }

        public static void Null(object value, string what = null)
        {
            if (value != null)
                Fail(what, "expected null, got " + Show(value));
        }

        /// <summary>Runs what must throw exactly an E, and gives it back.</summary>
        public static E Throws<E>(Action action, string what = null) where E : Exception
        {
            try
            {
                action();
            }
            catch (Exception thrown)
            {
                if (thrown.GetType() == typeof(E))
                    return (E)thrown;
                Fail(what, "expected " + typeof(E).Name + ", got " + thrown.GetType().Name + ": " + thrown.Message);
            }
            throw new AssertionException(what + ": expected " + typeof(E).Name + ", nothing was thrown");
        }

        /// <summary>A null object where a reference is wanted.</summary>
        public static void NullArgument(string message, Action action)
        {
            ArgumentNullException thrown = Throws<ArgumentNullException>(action, message);
            Equal(message, thrown.Message, "message");
            Null(thrown.ParamName, message);
        }

        private static void Fail(string what, string reason)
        {
            throw new AssertionException(what == null ? reason : what + ": " + reason);
        }

        private static string Show(object value) =>
            value == null ? "null" : value is string ? "\"" + value + "\"" : value.ToString();

        private static string ShowAll<T>(IEnumerable<T> values) =>
            string.Join(", ", values.Select(value => value is byte ? ((byte)(object)value).ToString("X2") : Show(value)));
    }
}

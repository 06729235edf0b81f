using System;
using System.Linq;
using System.Linq.Expressions;
using System.Reflection;

namespace Orbelantine.HostTests
{
    /// <summary>What stands behind a host's callback of any family: its delegates forward here.</summary>
    public sealed class HostCallback
    {
        private readonly Func<object[], bool> called;

        /// <summary>`called` gets the arguments; its result is the call's, where the family has one.</summary>
        public HostCallback(Func<object[], bool> called) => this.called = called;

        public int Calls { get; private set; }

        public Delegate As(Type type)
        {
            ParameterExpression[] parameters = type.GetMethod("Invoke").GetParameters()
                .Select(parameter => Expression.Parameter(parameter.ParameterType)).ToArray();
            Expression arguments = Expression.NewArrayInit(typeof(object), parameters.Select(parameter => Expression.Convert(parameter, typeof(object))));
            MethodInfo forward = typeof(HostCallback).GetMethod("Called", BindingFlags.Instance | BindingFlags.NonPublic);
            return Expression.Lambda(type, Expression.Call(Expression.Constant(this), forward, arguments), parameters).Compile();
        }

        private bool Called(object[] arguments)
        {
            ++Calls;
            return called(arguments);
        }
    }
}

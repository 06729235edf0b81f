using System;
using System.Linq;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class ErrorTests
    {
        [Test]
        public void TheNumberingBeginsAtItsBase()
        {
            Assert.Equal(20000, Common.ORB_ERROR_BASE);
        }

        [Test]
        public void ThereIsAProxyForEachArea()
        {
            var proxies = from type in typeof(error_code).Assembly.GetTypes()
                          where type.Namespace == "Orbelantine.Swig.common" && type.GetMethod("getErrorCode") != null
                          orderby type.Name
                          select type.Name;
            Assert.Equal(57, ErrorArea.All.Length);
            Assert.Sequence(ErrorArea.All.Select(area => area.Name).OrderBy(name => name), proxies);
        }

        [Test]
        public void EachAreaTellsSuccessItsFirstErrorAndItsEnd()
        {
            foreach (ErrorArea area in ErrorArea.All)
            {
                Assert.Equal(Message(area, "Success"), MessageOf(area, 0));
                Assert.Equal(Message(area, "Error code - " + area.FirstName), MessageOf(area, area.First));
                Assert.Equal(Message(area, "Error code - AfterLast"), MessageOf(area, area.AfterLast));
            }
        }

        [Test]
        public void EachAreaNamesItsNumbersForTheHost()
        {
            foreach (ErrorArea area in ErrorArea.All)
            {
                Type codes = Proxy(area).GetNestedType("Code");
                Assert.Equal(0, (int)Enum.Parse(codes, "Success"), area.Name);
                Assert.Equal(area.First, (int)Enum.Parse(codes, area.FirstName), area.Name);
                Assert.Equal(area.AfterLast, (int)Enum.Parse(codes, "AfterLast"), area.Name);
            }
        }

        [Test]
        public void AnAreaIsAnObjectWithoutState()
        {
            foreach (ErrorArea area in ErrorArea.All)
                using ((IDisposable)Activator.CreateInstance(Proxy(area)))
                    Assert.Equal(area.First, CodeOf(area, area.First).value(), area.Name);
        }

        [Test]
        public void EqualNumbersOfTwoAreasAreToldApart()
        {
            Assert.Contains("ServiceErrors, Message: Error code - AfterLast", ServiceErrors.getErrorCode(20010).message());
            Assert.Contains("SmsErrors, Message: Error code - InvalidParameter", SmsErrors.getErrorCode(20010).message());
        }

        [Test]
        public void NullArgumentsAreNamedByTheirType()
        {
            Assert.NullArgument("boost::system::error_category const & type is null", () => new error_code(5, null));
            Assert.NullArgument("boost::system::error_code const & type is null", () => new error_code(null));
        }

        [Test]
        public void TheHostsOwnCategoryMakesUpItsTexts()
        {
            using (var category = new SwigErrorCategory())
            {
                Assert.Equal("SwigErrorCategory", category.name());
                Assert.Equal("Swig Error: -5", category.message(-5));
                Assert.Equal("Swig Error: -5", category.message(-5), "again");
                Assert.Equal("Swig Error: 2147483647", category.message(int.MaxValue));
            }
        }

        [Test]
        public void TheHostsOwnCategoryMakesCodes()
        {
            using (error_code code = Common.GlobalCategory.error_code(7))
            {
                Assert.Equal(7, code.value());
                Assert.Equal("Swig Error: 7", code.message());
            }
            using (var code = new error_code(8, Common.GlobalCategory))
                Assert.Equal("Swig Error: 8", code.message());
        }

        [Test]
        public void ACategoryIsReachedThroughItsBase()
        {
            using (var category = new SwigErrorCategory())
            {
                IntPtr handle = Raw.Handle<error_category>(category);
                Assert.Equal("SwigErrorCategory", Raw.CallText("common", "error_category_name", handle));
                Assert.Equal("Swig Error: 3", Raw.CallText("common", "error_category_message", handle, 3));
            }
        }

        [Test]
        public void TheUpcastsOfACategoryGiveBackTheirPointer()
        {
            var pointer = new IntPtr(0x1230);
            Assert.Equal(pointer, Common.error_category_SWIGUpcast(pointer));
            Assert.Equal(pointer, Raw.CallHandle("common", "SwigErrorCategory_SWIGUpcast", pointer));
        }

        private static Type Proxy(ErrorArea area)
        {
            return typeof(error_code).Assembly.GetType("Orbelantine.Swig.common." + area.Name, true);
        }

        private static error_code CodeOf(ErrorArea area, int value)
        {
            return (error_code)Proxy(area).GetMethod("getErrorCode").Invoke(null, new object[] { value });
        }

        private static string MessageOf(ErrorArea area, int value)
        {
            using (error_code code = CodeOf(area, value))
            {
                Assert.Equal(value, code.value(), area.Name);
                return code.message();
            }
        }

        private static string Message(ErrorArea area, string text)
        {
            return "'Category: struct orbelantine::" + area.Name + ", Message: " + text + "'";
        }
    }
}

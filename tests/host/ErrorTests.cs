using System;
using System.Linq;
using Orbelantine.Swig.common;

namespace Orbelantine.HostTests
{
    public sealed class ErrorTests
    {
        private const int AreaCount = 57;

        public void EachAreaTellsItsNumbersAndTheirTexts()
        {
            Assert.Equal(20000, Common.ORB_ERROR_BASE);
            Type[] areas = typeof(error_code).Assembly.GetTypes().Where(type => type.GetMethod("getErrorCode") != null).ToArray();
            Assert.Equal(AreaCount, areas.Length, "areas");
            foreach (Type area in areas)
            {
                Assert.True(area.GetConstructor(Type.EmptyTypes) != null, area.Name);
                foreach (object number in Enum.GetValues(area.GetNestedType("Code")))
                    using (var code = (error_code)area.GetMethod("getErrorCode").Invoke(null, new object[] { (int)number }))
                    {
                        Assert.Equal((int)number, code.value(), area.Name);
                        string text = (int)number == 0 ? "Success" : "Error code - " + number;
                        Assert.Equal("'Category: struct orbelantine::" + area.Name + ", Message: " + text + "'", code.message());
                    }
            }
        }

        public void TheHostsOwnCategoryMakesCodesAndTheirTexts()
        {
            using (error_code code = Common.GlobalCategory.error_code(-7))
                Assert.Equal("Swig Error: -7", code.message());
            using (var category = new SwigErrorCategory())
            using (var code = new error_code(8, category))
            {
                Assert.Equal("Swig Error: 8", code.message());
                IntPtr handle = Common.error_category_SWIGUpcast(Raw.Handle<error_category>(category));
                Assert.Equal("SwigErrorCategory", Raw.CallText("common", "error_category_name", handle));
                Assert.Equal("Swig Error: 3", Raw.CallText("common", "error_category_message", handle, 3));
            }
        }
    }
}

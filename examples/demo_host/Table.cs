using System;
using System.Collections.Generic;
using System.Linq;

namespace Orbelantine.DemoHost
{
    /// <summary>Rows whose columns stand below each other.</summary>
    public static class Table
    {
        public static string Text(IReadOnlyList<string[]> rows, string between)
        {
            int[] widths = rows[0].Select((_, column) => rows.Max(row => row[column].Length)).ToArray();
            return string.Join(Environment.NewLine, rows.Select(
                row => string.Join(between, row.Select((cell, column) => cell.PadRight(widths[column]))).TrimEnd()));
        }
    }
}

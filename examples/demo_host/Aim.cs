using System;
using System.Collections.Generic;
using System.Linq;

namespace Orbelantine.DemoHost
{
    /// <summary>Where clicks were meant to land, and where they did, in phone pixels.</summary>
    public sealed class Aim
    {
        /// <summary>A landing this near counts as a hit.</summary>
        public const double Tolerance = 3;

        private readonly List<double> errors;

        /// <summary>Landings are taken in the order of the targets; what has no partner is left out.</summary>
        public Aim(IEnumerable<(int X, int Y)> targets, IEnumerable<(int X, int Y)> landings)
        {
            errors = targets.Zip(landings, (target, landing) => Distance(target, landing)).OrderBy(error => error).ToList();
        }

        public int Count { get { return errors.Count; } }
        public int Hits { get { return errors.Count(error => error <= Tolerance); } }
        public double Median { get { return Count == 0 ? 0 : errors[Count / 2]; } }
        public double Worst { get { return Count == 0 ? 0 : errors[Count - 1]; } }

        public override string ToString()
        {
            return FormattableString.Invariant(
                $"{Hits} of {Count} clicks hit ({100.0 * Hits / Math.Max(1, Count):F1}%), median error {Median:F1}, worst {Worst:F1} phone pixels");
        }

        private static double Distance((int X, int Y) target, (int X, int Y) landing)
        {
            double x = target.X - landing.X;
            double y = target.Y - landing.Y;
            return Math.Sqrt(x * x + y * y);
        }
    }
}

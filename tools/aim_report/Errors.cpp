#include "tools/aim_report/Errors.h"

#include <algorithm>

namespace orbelantine::aim {

namespace {

constexpr double kExact = 3;
/// Less than half of a small icon.
constexpr double kButton = 24;
/// About a millimetre.
constexpr double kFollowing = 15;

double medianOf(const std::vector<double>& sorted) {
    return (sorted[(sorted.size() - 1) / 2] + sorted[sorted.size() / 2]) / 2;
}

} // namespace

Errors::Errors(std::span<const Trial> trials) {
    for (const Trial& trial : trials) {
        mErrors.push_back(trial.error());
        if (trial.path)
            mPaths.push_back(*trial.path);
    }
    std::ranges::sort(mErrors);
    std::ranges::sort(mPaths);
}

double Errors::within(double pixels) const {
    const auto end = std::ranges::upper_bound(mErrors, pixels);
    return 100.0 * static_cast<double>(end - mErrors.begin()) / static_cast<double>(count());
}

double Errors::median() const {
    return medianOf(mErrors);
}

std::optional<double> Errors::path() const {
    return mPaths.empty() ? std::nullopt : std::optional(medianOf(mPaths));
}

const char* Errors::verdict() const {
    const bool alwaysNear = mPaths.empty() || mPaths.back() <= kExact;
    if (worst() <= kExact && alwaysNear)
        return "exact";
    if (const auto far = path())
        return *far <= kFollowing ? "follows the finger" : "leaves the finger";
    return worst() <= kButton ? "hits a button" : "may miss a button";
}

} // namespace orbelantine::aim

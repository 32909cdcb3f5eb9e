#pragma once

#include <compare>

namespace app {

/// A length on the screen in twips: 15 of them are a pixel at 96 dpi.
struct Twips {
    int value = 0;
    friend constexpr auto operator<=>(const Twips&, const Twips&) = default;
    friend constexpr Twips operator+(Twips a, Twips b) { return {a.value + b.value}; }
    friend constexpr Twips operator-(Twips a, Twips b) { return {a.value - b.value}; }
    friend constexpr Twips operator/(Twips a, int divisor) { return {a.value / divisor}; }
};

constexpr int twips_per_pixel = 15;

constexpr Twips from_pixels(int pixels) { return {pixels * twips_per_pixel}; }

/// The nearest whole number of pixels.
constexpr int to_pixels(Twips length) {
    const int half = length.value < 0 ? -(twips_per_pixel / 2) : twips_per_pixel / 2;
    return (length.value + half) / twips_per_pixel;
}

/// Place of a window or monitor on the desktop.
struct Rectangle {
    Twips left;
    Twips top;
    Twips right;
    Twips bottom;
    bool operator==(const Rectangle&) const = default;
    constexpr Twips width() const { return right - left; }
    constexpr Twips height() const { return bottom - top; }
};

/// Place of a window: left and top of its frame, height and width of what is inside.
struct Window_Place {
    Twips height;
    Twips width;
    Twips left;
    Twips top;
    bool operator==(const Window_Place&) const = default;
};

} // namespace app

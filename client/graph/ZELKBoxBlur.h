#pragma once

#include <vector>

/// Blurs as a bell curve does, in a time that does not grow with its width: three running means in each
/// direction come so near to it that nobody sees a difference. Nothing lies around what is blurred.
class ZELKBoxBlur
{
public:
    /// Standard deviation in pixels.
    explicit ZELKBoxBlur(double deviation);

    /// How many pixels away nothing is left of a pixel.
    int reach() const { return 3 * (m_radius + 1); }
    /// Rows of `width` values, one after the other.
    void blur(std::vector<float> &values, int width, int height) const;

private:
    void blurColumns(const std::vector<float> &values, std::vector<float> &to, int width, int height) const;

    // The mean is of 2 * radius + 1 values, and of the two beside them in part.
    int m_radius;
    float m_part;
    float m_weight;
};

#pragma once

#include <stdexcept>

namespace handover {

/// How cameras, lights and nulls are written for other 3D programs.
struct Scene3dOptions {
    double scale = 0.01;            ///< metres for each of the scene's units
    double cut_angle_degrees = 60;  ///< as in HandoverOptions
};

/// The scene cannot be written in this format; the text says why, and what to do.
class CannotWrite : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace handover

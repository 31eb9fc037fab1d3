#pragma once

class PictureLibrary;

/// SVG pictures through the engine of this library. Ends the process at what that asserts.
const PictureLibrary* builtInSVG();

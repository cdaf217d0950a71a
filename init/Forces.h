#pragma once

// Force kinds of the force list in the parameter file, in the order of their
// codes. These are not the disc-kind codes of RechteSeiteDG::scheibe().
enum Forces { externforce = 0, pressure = 1, artvisc = 2, physvisc = 3 };

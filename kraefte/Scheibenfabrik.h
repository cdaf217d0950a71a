#pragma once

class AkkScheibe;
class InitAkkScheibe;
class PhysSystem;

// Builds the disc of the given kind (the codes of RechteSeiteDG::scheibe())
// and reads the initial disc file into it. An unknown kind prints a message
// and gives null.
AkkScheibe* erzeugeScheibe(int art, InitAkkScheibe& init, PhysSystem& phys);

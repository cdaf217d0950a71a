#include "physik/Kernel.h"

#include "init/InitPhysSystem.h"

Kernel::Kernel(InitPhysSystem& init) : h(init.Smoothinglength) {}

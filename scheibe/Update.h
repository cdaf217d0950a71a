#pragma once

// Hook through which outside code can join the main loop: update() after
// every step, processEvents() before every evaluation of the forces.
class Update {
public:
    virtual ~Update() = default;
    virtual void update() = 0;
    virtual void processEvents() = 0;
};

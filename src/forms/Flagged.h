#pragma once

// Sets a flag for the time that it lives.
class Flagged {
public:
    explicit Flagged(bool& flag) noexcept : flag_(flag) { flag_ = true; }
    ~Flagged() { flag_ = false; }
    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;

private:
    bool& flag_;
};

// A library that is not a tool library: it lacks the exports.
extern "C" int somethingElse() { return 1; }

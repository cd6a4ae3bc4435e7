"""Makes the C++ classes, the index and the reference of the message catalogue from its tables."""

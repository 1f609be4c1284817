# The fuzz targets: NAME.cpp, with its seeds in corpus/NAME.
set(fuzz_targets addresses ber certificate dates message names scripts verify)

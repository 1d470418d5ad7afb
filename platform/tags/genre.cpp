#include "platform/tags/genre.h"

Text genreName(std::int16_t genre) { return genre == 80 ? "Unknown" : ""; }

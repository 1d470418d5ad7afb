// Pictures for those who cannot see them: a button or a slider by its tool tip's name. For the toolkit's own
// sources.
#pragma once

void makeImagesAccessible();

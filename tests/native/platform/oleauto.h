// The one type of automation that the portable pieces use.
#pragma once

using DATE = double;

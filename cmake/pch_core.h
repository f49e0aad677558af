// Precompiled for every Qt Core layer target.
#pragma once
#include <QtCore/QtCore>
#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

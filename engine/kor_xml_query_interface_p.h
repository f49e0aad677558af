#pragma once

// Placeholder of the engine's private state until the engine proper lands.
class KOR_XML_QUERY_INTERFACE_PRIVATE
{
};

#pragma once
// The server's keep-alive.

class ClientContext;
struct ServerMessage;

// "PING :srv1" is answered with "PONG :srv1". Unless "Hide Ping?Pong!" is on,
// "PING? PONG!" is written to Status (style Ping) before the answer goes out.
void OnServerPing(ClientContext& ctx, const ServerMessage& message);

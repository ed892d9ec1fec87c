<configprofile version="1.0" name="Old"><group label="Group"><spinner id="0">2.5</spinner></group><check id="2">0</check><string id="3">hello</string></configprofile>

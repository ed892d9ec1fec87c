<configprofile version="2.0" name="Machine Gun">
	<group id="-1" label="General Modes">
		<item id="0" label="Hide Helpers">0</item>
		<item id="1" label="Hide Helpers During Recording">0</item>
		<item id="2" label="Hide Camera">0</item>
		<item id="3" label="Hide Camera During Recording">0</item>
	</group>
	<group id="-1" label="Bullet Properties">
		<item id="4" label="Muzzle Velocity (m/s)" type="blob">AAAAAADAckA=</item>
		<item id="5" label="Spread Angle (degrees)" type="blob">AAAAAAAAAAA=</item>
		<item id="6" label="Gravity" type="blob">AAAAAAAAJEA=</item>
		<item id="7" label="Rotation (revolutions/s)" type="blob">AAAAAAAAJEA=</item>
		<item id="8" label="Lifetime (seconds)" type="blob">AAAAAAAAFEA=</item>
		<item id="9" label="Rate of fire (rounds/s)">10</item>
		<item id="10" label="Bullets/discharge">1</item>
		<item id="11" label="Fire First Bullet On Nth Time">1</item>
		<item id="12" label="Fire Nth Time">0</item>
		<item id="13" label="Pitch Bullet">0</item>
		<item id="14" label="Randomize Rotation Speed" type="blob">AAAAAAAAAAA=</item>
		<item id="15" label="Randomize Rotation Axis" type="blob">AAAAAAAAAAA=</item>
		<item id="16" label="Time Delay">0</item>
		<item id="17" label="Time Delay in Frames">0</item>
	</group>
	<group id="-1" label="Collision parameters">
		<item id="18" label="elasticity (%)" type="blob">AAAAAAAAAAA=</item>
		<item id="19" label="collision correction value" type="blob">mpmZmZmZyT8=</item>
	</group>
	<group id="-1" label="Air Resistance">
		<item id="20" label="Air Resistance Force" type="blob">AAAAAAAAAAA=</item>
	</group>
	<group id="-1" label="Select">
		<item id="22" label="nrBullets" type="blob">AAAAAAAAAAA=</item>
	</group>
	<group id="-1" label="Recoil properties">
		<item id="23" label="Response Factor" type="blob">AAAAAAAA8D8=</item>
		<item id="24" label="Backward (frames)">1</item>
		<item id="25" label="Forward (frames)">1</item>
		<item id="26" label="Depth (%)" type="blob">AAAAAAAAREA=</item>
	</group>
</configprofile>

<configprofile version="2.0" name="Air To Air">
	<group id="-1" label="General Modes">
		<item id="0" label="Hide Helpers">0</item>
		<item id="1" label="Hide Helpers During Recording">0</item>
		<item id="2" label="Hide Rear Camera">0</item>
	</group>
	<group id="-1" label="Missile Modes">
		<item id="3" label="Use Guided Missile">1</item>
		<item id="4" label="Quit Guiding if Target is Missed">1</item>
		<item id="5" label="Add Parent's Initial Speed to Maximum Speed">0</item>
		<item id="6" label="Fire Missile at Current Frame">0</item>
		<item id="7" label="Fire Nth time">1</item>
	</group>
	<group id="-1" label="Guided Missile Parameters">
		<item id="8" label="Units per second" type="blob">AAAAAAAAAAA=</item>
		<item id="9" label="Distance To Target" type="blob">AAAAAAAAAAA=</item>
		<item id="10" label="Guidance Strength (%/sec)" type="blob">mpmZmZmZ2T8=</item>
		<item id="11" label="Guidance Limiter (rads/sec)" type="blob">AAAAAAAACEA=</item>
		<item id="12" label="Target Speed Compensation" type="blob">AAAAAAAA8D8=</item>
		<item id="13" label="Unguided Flight Time" type="blob">AAAAAAAAAAA=</item>
	</group>
	<group id="-1" label="Physical Parameters">
		<item id="14" label="Maximum Speed" type="blob">AAAAAAAAXkA=</item>
		<item id="15" label="Acceleration" type="blob">AAAAAAAANEA=</item>
		<item id="16" label="Ignition Time" type="blob">MzMzMzMz0z8=</item>
		<item id="17" label="Mass" type="blob">MzMzMzMz4z8=</item>
		<item id="18" label="Gravity Strength" type="blob">AAAAAAAACEA=</item>
		<item id="19" label="Time to Compensate for Gravity" type="blob">mpmZmZmZ2T8=</item>
		<item id="20" label="Time to Eliminate Initial Speeds" type="blob">AAAAAAAA4D8=</item>
		<item id="21" label="Initial -z Speed (%)" type="blob">AAAAAAAAAAA=</item>
		<item id="22" label="Initial y Speed (%)" type="blob">AAAAAAAAAAA=</item>
		<item id="23" label="Turbulence Strength" type="blob">exSuR+F6lD8=</item>
		<item id="24" label="Turbulence Roughness" type="blob">exSuR+F6hD8=</item>
		<item id="25" label="Turbulence Response Factor" type="blob">mpmZmZmZyT8=</item>
		<item id="26" label="Turbulence Maximum" type="blob">AAAAAAAA4D8=</item>
	</group>
	<group id="-1" label="Propulsion Flame Parameters">
		<item id="27" label="Propulsion Flame Spin" type="blob">AAAAAAAAEEA=</item>
		<item id="28" label="Propulsion Flame Scale" type="blob">AAAAAAAA8D8=</item>
	</group>
</configprofile>

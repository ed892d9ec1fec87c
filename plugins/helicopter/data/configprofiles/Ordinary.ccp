<configprofile version="2.0" name="Ordinary">
	<group id="-1" label="General Modes">
		<item id="1" label="Hide Helpers">0</item>
		<item id="2" label="Hide Helpers During Recording">0</item>
		<item id="3" label="Hide Cockpit Camera">0</item>
		<item id="4" label="Hide Follow Camera">0</item>
	</group>
	<group id="-1" label="Camera Modes">
		<item id="5" label="FollowCam w all directions">0</item>
	</group>
	<group id="-1" label="General Parameters">
		<item id="6" label="Wind Turbulence Offset Value" type="blob">AAAAAAAAAAA=</item>
		<item id="7" label="Wind Turbulence Irregularity" type="blob">AAAAAAAA8D8=</item>
	</group>
	<group id="-1" label="Input Property Parameters">
		<item id="8" label="Forw/Backw Speed: Response Factor" type="blob">mpmZmZmZuT8=</item>
		<item id="9" label="Forw/Backw Speed: Maximum" type="blob">AAAAAAAANEA=</item>
		<item id="10" label="Right/Left Speed: Response Factor" type="blob">mpmZmZmZuT8=</item>
		<item id="11" label="Right/Left Speed: Maximum" type="blob">AAAAAAAALkA=</item>
		<item id="12" label="Up/Down Speed: Response Factor" type="blob">uB6F61G4rj8=</item>
		<item id="13" label="Up/Down Speed: Maximum" type="blob">AAAAAAAAFEA=</item>
		<item id="14" label="Yaw Speed (Right/Left): Response Factor" type="blob">mpmZmZmZ2T8=</item>
		<item id="15" label="Yaw Speed (Right/Left): Maximum" type="blob">ZmZmZmZm5j8=</item>
		<item id="16" label="Brake All: Response Factor" type="blob">exSuR+F6lD8=</item>
		<item id="17" label="Brake All: Maximum" type="blob">AAAAAAAASUA=</item>
		<item id="18" label="Wind Turbulence Strength: Response Factor" type="blob">mpmZmZmZuT8=</item>
		<item id="19" label="Wind Turbulence Strength: Maximum" type="blob">AAAAAAAAJEA=</item>
	</group>
	<group id="-1" label="Rotor Parameters">
		<item id="20" label="Main Rotor Rotation Speed" type="blob">AAAAAACAVkA=</item>
		<item id="21" label="Tail Rotor Rotation Speed" type="blob">AAAAAADAYkA=</item>
	</group>
</configprofile>

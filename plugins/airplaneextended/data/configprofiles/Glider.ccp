<configprofile version="2.0" name="Glider">
	<group id="-1" label="Gauges">
		<item id="0" label="Initital Velocity (% of max)" type="blob">AAAAAAAAAAA=</item>
		<item id="1" label="Multiplier" type="blob">zczMzMzMDEA=</item>
	</group>
	<group id="-1" label="General Modes">
		<item id="5" label="Hide Helpers">0</item>
		<item id="6" label="Hide Helpers During Recording">0</item>
		<item id="7" label="Hide Cockpit Camera">0</item>
		<item id="8" label="Hide Follow Camera">0</item>
		<item id="9" label="FollowCam w all directions">0</item>
	</group>
	<group id="-1" label="Airplane Modes">
		<item id="10" label="Realistic Airplane Control">0</item>
		<item id="11" label="Use relative forward velocity">0</item>
	</group>
	<group id="-1" label="Autonomous Mode">
		<item id="12" label="Enable Autonomous Mode">0</item>
		<item id="13" label="Roll with the Target">0</item>
		<item id="14" label="Follow Strength" type="blob">AAAAAAAA8D8=</item>
		<item id="15" label="Follow Strength Response Factor" type="blob">MzMzMzMz0z8=</item>
		<item id="16" label="Yaw Strength" type="blob">AAAAAAAAAEA=</item>
		<item id="17" label="Pitch Strength" type="blob">AAAAAAAAAEA=</item>
		<item id="18" label="Roll Strength" type="blob">AAAAAAAACEA=</item>
		<item id="19" label="Auto-Steering Response Factor" type="blob">AAAAAAAA4D8=</item>
	</group>
	<group id="-1" label="Airplane Parameters">
		<item id="20" label="Shake Offset Value" type="blob">AAAAAAAAAAA=</item>
		<item id="21" label="Turbulence Offset Value" type="blob">AAAAAAAAAAA=</item>
		<item id="22" label="Wind Strength" type="blob">AAAAAAAA4D8=</item>
		<item id="23" label="Virtual Mass" type="blob">AAAAAAAAFEA=</item>
		<item id="24" label="Shaker Fade Out Factor" type="blob">mpmZmZmZuT8=</item>
		<item id="25" label="Turbulence Fade Out Factor" type="blob">mpmZmZmZuT8=</item>
		<item id="26" label="Turbulence Frequency" type="blob">AAAAAAAAREA=</item>
	</group>
	<group id="-1" label="Actuator Multipliers">
		<item id="27" label="Rudder Angle Mult" type="blob">AAAAAAAA8D8=</item>
		<item id="28" label="Elevator Angle Mult" type="blob">AAAAAAAA8D8=</item>
		<item id="29" label="Right Aileron Angle Mult" type="blob">AAAAAAAA8D8=</item>
		<item id="30" label="Left Aileron Angle Mult" type="blob">AAAAAAAA8D8=</item>
	</group>
	<group id="-1" label="Input Property Parameters">
		<item id="31" label="Forw/Backw Speed: Response Factor" type="blob">exSuR+F6hD8=</item>
		<item id="32" label="Forw/Backw Speed: Maximum" type="blob">AAAAAAAAKEA=</item>
		<item id="33" label="Right/Left Speed: Response Factor" type="blob">uB6F61G4nj8=</item>
		<item id="34" label="Right/Left Speed: Maximum" type="blob">AAAAAAAAEEA=</item>
		<item id="35" label="Up/Down Speed: Response Factor" type="blob">uB6F61G4nj8=</item>
		<item id="36" label="Up/Down Speed: Maximum" type="blob">AAAAAAAAEEA=</item>
		<item id="37" label="Rudder (Yaw Right/Left): Response Factor" type="blob">mpmZmZmZuT8=</item>
		<item id="38" label="Rudder (Yaw Right/Left): Maximum" type="blob">AAAAAAAA4D8=</item>
		<item id="39" label="Elevator (Pitch Up/Down): Response Factor" type="blob">mpmZmZmZuT8=</item>
		<item id="40" label="Elevator (Pitch Up/Down): Maximum" type="blob">mpmZmZmZ6T8=</item>
		<item id="41" label="Aileron (Roll Right/Left): Response Factor" type="blob">mpmZmZmZuT8=</item>
		<item id="42" label="Aileron (Roll Right/Left): Maximum" type="blob">AAAAAAAA8D8=</item>
		<item id="43" label="Horizontal Regulator: Response Factor" type="blob">uB6F61G4rj8=</item>
		<item id="44" label="Horizontal Regulator: Maximum" type="blob">AAAAAAAA8D8=</item>
		<item id="45" label="Turbulence Amplitude: Response Factor" type="blob">mpmZmZmZqT8=</item>
		<item id="46" label="Turbulence Amplitude: Maximum" type="blob">AAAAAAAACEA=</item>
		<item id="47" label="Shaker Amplitude: Response Factor" type="blob">AAAAAAAA8D8=</item>
		<item id="48" label="Shaker Amplitude: Maximum" type="blob">AAAAAAAALkA=</item>
		<item id="49" label="Brake All: Response Factor" type="blob">exSuR+F6lD8=</item>
		<item id="50" label="Brake All: Maximum" type="blob">AAAAAAAA8D8=</item>
		<item id="51" label="AfterBurner: Response Factor" type="blob">exSuR+F6lD8=</item>
		<item id="52" label="AfterBurner: Maximum" type="blob">AAAAAAAA8D8=</item>
	</group>
	<group id="-1" label="Miscellaneous Parameters">
		<item id="53" label="Use constant Propeller Speed">0</item>
		<item id="54" label="Propeller Rotation Speed" type="blob">AAAAAAAAAAA=</item>
		<item id="55" label="Reverse first propeller">0</item>
		<item id="56" label="Shaker Roughness" type="blob">AAAAAAAA4D8=</item>
	</group>
</configprofile>